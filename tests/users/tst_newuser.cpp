// The new-user template: what loading shows, what OK writes (numbers read
// from the start of the text, font sizes held to 8..15), the factory Reset,
// and Cancel writing nothing.
#include "UsersTest.h"

#include "console/frmMain.h"
#include "core/Global.h"
#include "platform/Database.h"
#include "platform/MessageBox.h"
#include "platform/Modal.h"
#include "users/frmNewUser.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QRadioButton>
#include <QTabWidget>
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
    const char *control;
    const char *column;
    const char *factory;
};
const Setting Settings[] = {
    {"chkAutoClearComments", "AutoClearComments", "0"},
    {"chkAutoLogIn", "AutoLogIn", "1"},
    {"chkAutoLogOut", "AutoLogOut", "1"},
    {"chkAutoMinimize", "AutoMinimize", "0"},
    {"ComboRefreshRate", "RefreshRate", "5"},
    {"optMinimizeSetting", "MinimizeSetting", "0"},
    {"chkMinimizeOnClose", "MinimizeOnClose", "0"},
    {"chkDisplayTreeView", "DisplayTreeView", "1"},
    {"chkListViewPopUp", "ListViewPopUp", "1"},
    {"chkChangeScreenPopUp", "ChangeScreenPopUp", "0"},
    {"ComboDefaultGroup", "DefaultGroup", "Everyone"},
    {"optSortKey", "SortKey", "2"},
    {"optSortOrder", "SortOrder", "0"},
    {"comboFontSizeDisplay", "FontSizeDisplay", "8"},
    {"chkFontBoldDisplay", "FontBoldDisplay", "0"},
    {"txtScreenTop", "ScreenTop", "600"},
    {"txtScreenLeft", "ScreenLeft", "600"},
    {"txtScreenWidth", "ScreenWidth", "10710"},
    {"txtScreenHeight", "ScreenHeight", "7005"},
    {"txtStatusColumnWidth", "StatusColumnWidth", "2000"},
    {"txtNameColumnWidth", "NameColumnWidth", "1400"},
    {"txtPhoneColumnWidth", "PhoneColumnWidth", "1100"},
    {"txtDueBackColumnWidth", "DueBackColumnWidth", "1300"},
    {"txtCommentsColumnWidth", "CommentsColumnWidth", "1300"},
    {"txtLastModifiedColumnWidth", "LastModifiedColumnWidth", "4000"},
    {"optUserSecurityLevel", "UserSecurityLevel", "0"},
    {"optIconSize", "IconSize", "0"},
    {"optToolBarText", "ToolBarText", "1"},
};

// A template far from every default, so that a setting that is not loaded
// or not saved shows.
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
    void loadShowsTheTemplate()
    {
        Console c(customTemplate);
        frmNewUser d;
        Database other = c.other();
        const QMap<QString, QString> row = templateRow(other);
        for (const Setting &s : Settings)
            QVERIFY2(shownValue(&d, s.control) == row.value(s.column),
                     qPrintable(QString("%1: %2 / %3").arg(s.control, shownValue(&d, s.control), row.value(s.column))));
        QCOMPARE(d.windowTitle(), gstrAppTitle + "New User Defaults");
        auto *tabs = control<QTabWidget>(&d, "TabStripNewUser");
        QCOMPARE(tabs->count(), 5);
        QCOMPARE(tabs->currentIndex(), 0);
        QStringList groups;
        auto *combo = control<QComboBox>(&d, "ComboDefaultGroup");
        for (int i = 0; i < combo->count(); ++i)
            groups << combo->itemText(i);
        QCOMPARE(groups, (QStringList{"Everyone", "Sales", "Support"}));
        QStringList rates;
        auto *refresh = control<QComboBox>(&d, "ComboRefreshRate");
        for (int i = 0; i < refresh->count(); ++i)
            rates << refresh->itemText(i);
        QCOMPARE(rates, (QStringList{"0", "1", "5", "15", "30", "60"}));
        // Added at opening and again on loading.
        QStringList sizes;
        auto *font = control<QComboBox>(&d, "comboFontSizeDisplay");
        for (int i = 0; i < font->count(); ++i)
            sizes << font->itemText(i);
        const QStringList once{"8", "9", "10", "11", "12", "13", "14", "15"};
        QCOMPARE(sizes, once + once);
    }

    // Open, OK, open again: every setting comes back as it was, and the
    // columns the window does not show are left alone.
    void roundTrip()
    {
        Console c(customTemplate);
        Database other = c.other();
        const QMap<QString, QString> before = templateRow(other);
        const long long counterBefore = counter(other);
        {
            frmNewUser d;
            d.show();
            d.cmdButtons_Click(0);
            QCOMPARE(d.result(), int(QDialog::Accepted));
        }
        QCOMPARE(templateRow(other), before);
        QCOMPARE(counter(other), counterBefore);
        QCOMPARE(boxes(), QStringList());
    }

    void everyControlIsSaved()
    {
        // Each setting changed on its own from the factory state: a save that
        // misses or swaps one shows here.
        Console c;
        Database other = c.other();
        const QMap<QString, QString> changed = {
            {"AutoClearComments", "1"}, {"AutoLogIn", "0"}, {"AutoLogOut", "0"}, {"AutoMinimize", "1"},
            {"RefreshRate", "30"}, {"MinimizeSetting", "1"}, {"MinimizeOnClose", "1"}, {"DisplayTreeView", "0"},
            {"ListViewPopUp", "0"}, {"ChangeScreenPopUp", "1"}, {"DefaultGroup", "Everyone"}, {"SortKey", "4"},
            {"SortOrder", "1"}, {"FontSizeDisplay", "11"}, {"FontBoldDisplay", "1"}, {"ScreenTop", "-10"},
            {"ScreenLeft", "11"}, {"ScreenWidth", "12"}, {"ScreenHeight", "13"}, {"StatusColumnWidth", "14"},
            {"NameColumnWidth", "15"}, {"PhoneColumnWidth", "16"}, {"DueBackColumnWidth", "17"},
            {"CommentsColumnWidth", "18"}, {"LastModifiedColumnWidth", "19"}, {"UserSecurityLevel", "2"},
            {"IconSize", "1"}, {"ToolBarText", "0"}};
        frmNewUser d;
        for (const Setting &s : Settings)
            setValue(&d, s.control, changed.value(s.column));
        d.cmdButtons_Click(0);
        const QMap<QString, QString> row = templateRow(other);
        for (const Setting &s : Settings)
            QVERIFY2(row.value(s.column) == changed.value(s.column), s.column);
    }

    void numbersAsTyped_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("stored");
        QTest::newRow("rate the options lack") << "ComboRefreshRate" << "10" << "RefreshRate" << "10";
        QTest::newRow("rate with text behind") << "ComboRefreshRate" << "12 minutes" << "RefreshRate" << "12";
        QTest::newRow("rate with no number") << "ComboRefreshRate" << "often" << "RefreshRate" << "0";
        QTest::newRow("font below the range") << "comboFontSizeDisplay" << "7" << "FontSizeDisplay" << "8";
        QTest::newRow("font above the range") << "comboFontSizeDisplay" << "99" << "FontSizeDisplay" << "15";
        QTest::newRow("font with no number") << "comboFontSizeDisplay" << "big" << "FontSizeDisplay" << "8";
        QTest::newRow("negative position") << "txtScreenTop" << "-600" << "ScreenTop" << "-600";
        QTest::newRow("blanks around") << "txtScreenLeft" << "  450  " << "ScreenLeft" << "450";
        QTest::newRow("letters") << "txtScreenWidth" << "abc" << "ScreenWidth" << "0";
        QTest::newRow("half rounds to even") << "txtStatusColumnWidth" << "2500.5" << "StatusColumnWidth" << "2500";
        QTest::newRow("above half rounds up") << "txtNameColumnWidth" << "1400.7" << "NameColumnWidth" << "1401";
        QTest::newRow("exponent") << "txtPhoneColumnWidth" << "1.1e3" << "PhoneColumnWidth" << "1100";
        QTest::newRow("empty") << "txtDueBackColumnWidth" << "" << "DueBackColumnWidth" << "0";
        QTest::newRow("group typed") << "ComboDefaultGroup" << "Sales" << "DefaultGroup" << "Sales";
    }
    void numbersAsTyped()
    {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, column);
        QFETCH(QString, stored);
        Console c([](Database &db) { db.execute("INSERT INTO GroupTable (GroupName) VALUES ('Sales')"); });
        frmNewUser d;
        setValue(&d, control, typed);
        d.cmdButtons_Click(0);
        QCOMPARE(boxes(), QStringList());
        Database other = c.other();
        QCOMPARE(templateRow(other).value(column), stored);
    }

    void numberOutOfRangeIsRefused()
    {
        // A width no whole-number column holds: the store refuses it, the
        // message says so, and the template keeps its old value.
        Console c;
        frmNewUser d;
        d.show();
        control<QLineEdit>(&d, "txtScreenTop")->setText("99999");
        d.cmdButtons_Click(0);
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '"));
        QVERIFY(d.isVisible());
        Database other = c.other();
        QCOMPARE(templateRow(other).value("ScreenTop"), QString("1200"));
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
        QCOMPARE(Msg::transcript()[0].icon, Msg::Icon::None);
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
        Console c([](Database &db) {
            db.execute("DELETE FROM NewUserDefaultsTable");
        });
        Database other = c.other();
        other.execute("DELETE FROM EmployeeSettingsTable");
        other.execute("DELETE FROM GroupTable");
        frmNewUser d;
        QCOMPARE(other.scalar("SELECT count(*) FROM NewUserDefaultsTable").toInt(), 1);
        QCOMPARE(other.scalar("SELECT GroupName FROM GroupTable").toString(), QString("Everyone"));
        // The schema's defaults of the template.
        QCOMPARE(shownValue(&d, "ComboRefreshRate"), QString("5"));
        QCOMPARE(shownValue(&d, "chkAutoLogIn"), QString("1"));
        QCOMPARE(shownValue(&d, "txtScreenTop"), QString("1200"));
        QCOMPARE(shownValue(&d, "ComboDefaultGroup"), QString("Everyone"));
    }

    void sortKeyOfNoChoiceStopsTheOpening()
    {
        Console c([](Database &db) { db.execute("UPDATE NewUserDefaultsTable SET SortKey = 7"); });
        ShownWindows shown;
        c.w().menuItem("mnuNewUserDefaults")->trigger();
        QCOMPARE(shown.names, QStringList());
        QCOMPARE(Msg::transcript().size(), 1);
        QVERIFY(Msg::transcript()[0].text.startsWith("Run-time error '340'"));
    }

    void fromTheMenu()
    {
        Console c(customTemplate);
        Database other = c.other();
        Modal::setHandler([&](QDialog *d) {
            QCOMPARE(d->objectName(), QString("frmNewUser"));
            setValue(d, "txtScreenHeight", "6000");
            QTest::mouseClick(control<QPushButton>(d, "cmdButtons_0"), Qt::LeftButton);
        });
        c.w().menuItem("mnuNewUserDefaults")->trigger();
        Modal::setHandler({});
        QCOMPARE(other.scalar("SELECT ScreenHeight FROM NewUserDefaultsTable").toInt(), 6000);
    }
};

QTEST_MAIN(TestNewUser)
#include "tst_newuser.moc"
