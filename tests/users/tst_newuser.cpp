// The new-user template: load and save, numbers read from the start of the
// text, the factory Reset, and Cancel writing nothing.
#include "UsersTest.h"

#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "users/frmNewUser.h"

#include <QComboBox>
#include <QTest>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

// The template row, column by column, as text.
QMap<QString, QString> templateRow(Database &db)
{
    QMap<QString, QString> out;
    Recordset rs = db.query("SELECT * FROM NewUserDefaultsTable");
    for (int i = 0; i < rs.fieldCount(); ++i)
        out.insert(rs.fieldNames()[i], rs.value(i).isNull() ? QString("<null>") : rs.value(i).toString());
    return out;
}

// Control, column and the factory value Reset puts in the control.
struct Setting {
    const char *control, *column, *factory;
};
const Setting Settings[] = {
    {"chkAutoClearComments", "AutoClearComments", "0"}, {"chkAutoLogIn", "AutoLogIn", "1"},
    {"chkAutoLogOut", "AutoLogOut", "1"}, {"chkAutoMinimize", "AutoMinimize", "0"},
    {"ComboRefreshRate", "RefreshRate", "5"}, {"optMinimizeSetting", "MinimizeSetting", "0"},
    {"chkMinimizeOnClose", "MinimizeOnClose", "0"}, {"chkDisplayTreeView", "DisplayTreeView", "1"},
    {"chkListViewPopUp", "ListViewPopUp", "1"}, {"chkChangeScreenPopUp", "ChangeScreenPopUp", "0"},
    {"ComboDefaultGroup", "DefaultGroup", "Everyone"}, {"optSortKey", "SortKey", "2"},
    {"optSortOrder", "SortOrder", "0"}, {"comboFontSizeDisplay", "FontSizeDisplay", "8"},
    {"chkFontBoldDisplay", "FontBoldDisplay", "0"}, {"txtScreenTop", "ScreenTop", "600"},
    {"txtScreenLeft", "ScreenLeft", "600"}, {"txtScreenWidth", "ScreenWidth", "10710"},
    {"txtScreenHeight", "ScreenHeight", "7005"}, {"txtStatusColumnWidth", "StatusColumnWidth", "2000"},
    {"txtNameColumnWidth", "NameColumnWidth", "1400"}, {"txtPhoneColumnWidth", "PhoneColumnWidth", "1100"},
    {"txtDueBackColumnWidth", "DueBackColumnWidth", "1300"}, {"txtCommentsColumnWidth", "CommentsColumnWidth", "1300"},
    {"txtLastModifiedColumnWidth", "LastModifiedColumnWidth", "4000"},
    {"optUserSecurityLevel", "UserSecurityLevel", "0"}, {"optIconSize", "IconSize", "0"},
    {"optToolBarText", "ToolBarText", "1"},
};

// A template far from every factory value, so that a setting not loaded or
// not saved shows.
void customTemplate(Database &db)
{
    db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales'), ('Support')");
    db.execute("UPDATE NewUserDefaultsTable SET AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 0, "
               "AutoMinimize = 1, RefreshRate = 10, MinimizeSetting = 2, MinimizeOnClose = 1, DisplayTreeView = 0, "
               "ListViewPopUp = 0, ChangeScreenPopUp = 1, DefaultGroup = 'Support', SortKey = 6, SortOrder = 1, "
               "FontSizeDisplay = 13, FontBoldDisplay = 1, ScreenTop = -1200, ScreenLeft = 333, ScreenWidth = 9001, "
               "ScreenHeight = 7002, StatusColumnWidth = 2101, NameColumnWidth = 1402, PhoneColumnWidth = 1103, "
               "DueBackColumnWidth = 1304, CommentsColumnWidth = 1305, LastModifiedColumnWidth = 4006, "
               "UserSecurityLevel = 1, IconSize = 1, ToolBarText = 0, Password = 'pw', PictureFileName = 'p.jpg', "
               "StatusColumnOrder = 9, SortColumnName = 'Phone', SplitterPositionVertical = 1000");
}

}  // namespace

class TestNewUser : public QObject {
    Q_OBJECT

private slots:
    // Open, OK: every setting shows as stored and comes back as it was; the
    // columns the window does not show are left alone.
    void roundTrip()
    {
        Console c(customTemplate);
        Database other = c.other();
        const QMap<QString, QString> before = templateRow(other);
        const long long counterBefore = counter(other);
        frmNewUser d;
        d.show();
        for (const Setting &s : Settings)
            QVERIFY2(shownValue(&d, s.control) == before.value(s.column), s.control);
        auto *groups = control<QComboBox>(&d, "ComboDefaultGroup");
        QCOMPARE(groups->count(), 3);
        QCOMPARE(groups->itemText(2), QString("Support"));
        d.cmdButtons_Click(0);
        QCOMPARE(d.result(), int(QDialog::Accepted));
        QCOMPARE(templateRow(other), before);
        QCOMPARE(counter(other), counterBefore);
        QCOMPARE(boxes(), QStringList());
    }

    void numbersAsTyped_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("stored");  // "error" when the store refuses it
        QTest::newRow("rate with text behind") << "ComboRefreshRate" << "12 minutes" << "RefreshRate" << "12";
        QTest::newRow("rate with no number") << "ComboRefreshRate" << "often" << "RefreshRate" << "0";
        QTest::newRow("font below the range") << "comboFontSizeDisplay" << "7" << "FontSizeDisplay" << "8";
        QTest::newRow("font above the range") << "comboFontSizeDisplay" << "99" << "FontSizeDisplay" << "15";
        QTest::newRow("blanks around") << "txtScreenLeft" << "  -450  " << "ScreenLeft" << "-450";
        QTest::newRow("half rounds to even") << "txtStatusColumnWidth" << "2500.5" << "StatusColumnWidth" << "2500";
        QTest::newRow("exponent") << "txtPhoneColumnWidth" << "1.1e3" << "PhoneColumnWidth" << "1100";
        QTest::newRow("empty") << "txtDueBackColumnWidth" << "" << "DueBackColumnWidth" << "0";
        QTest::newRow("too large for the column") << "txtScreenTop" << "99999" << "ScreenTop" << "error";
    }
    void numbersAsTyped()
    {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, column);
        QFETCH(QString, stored);
        Console c;
        Database other = c.other();
        const QString old = templateRow(other).value(column);
        frmNewUser d;
        d.show();
        setValue(&d, control, typed);
        d.cmdButtons_Click(0);
        QCOMPARE(templateRow(other).value(column), stored == "error" ? old : stored);
        QCOMPARE(Msg::transcript().size(), stored == "error" ? 1 : 0);
        QCOMPARE(d.isVisible(), stored == "error");
    }

    void resetThen_data()
    {
        QTest::addColumn<int>("button");
        QTest::newRow("Cancel: nothing written") << 1;
        QTest::newRow("OK: factory values written") << 0;
    }
    void resetThen()
    {
        QFETCH(int, button);
        Console c(customTemplate);
        Database other = c.other();
        const QMap<QString, QString> before = templateRow(other);
        frmNewUser d;
        d.show();
        d.cmdButtons_Click(3);
        for (const Setting &s : Settings)
            QVERIFY2(shownValue(&d, s.control) == s.factory, s.control);
        QCOMPARE(boxes(), QStringList{Msg::defaultTitle() + "|Values have been reset to factory defaults, but not saved (yet)."});
        QCOMPARE(templateRow(other), before);
        d.cmdButtons_Click(button);
        QVERIFY(!d.isVisible());
        QMap<QString, QString> expected = before;
        if (button == 0)
            for (const Setting &s : Settings)
                expected[s.column] = s.factory;
        QCOMPARE(templateRow(other), expected);
    }

    void emptyTablesGetTheirRows()
    {
        Console c([](Database &db) { db.execute("DELETE FROM NewUserDefaultsTable"); });
        Database other = c.other();
        other.execute("DELETE FROM EmployeeSettingsTable");
        other.execute("DELETE FROM GroupTable");
        frmNewUser d;
        QCOMPARE(other.scalar("SELECT count(*) FROM NewUserDefaultsTable").toInt(), 1);
        QCOMPARE(other.scalar("SELECT GroupName FROM GroupTable").toString(), QString("Everyone"));
        QCOMPARE(shownValue(&d, "txtScreenTop"), QString("1200"));  // the template's schema default
    }
};

QTEST_MAIN(TestNewUser)
#include "tst_newuser.moc"
