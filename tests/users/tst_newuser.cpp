// The new-user template: load and save, numbers read from the start of the
// text, the factory Reset, and Cancel writing nothing.
#include "UsersTest.h"

#include "users/frmNewUser.h"

#include <QComboBox>
#include <QRegularExpression>

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

// A control is named after its column ("control" or "control=value").
QString column(const QString &control)
{
    return control.section('=', 0, 0).remove(QRegularExpression("^(chk|txt|opt|[Cc]ombo)"));
}

// Each control with the factory value Reset puts in it.
const QStringList Factory = QString(
    "chkAutoClearComments=0 chkAutoLogIn=1 chkAutoLogOut=1 chkAutoMinimize=0 ComboRefreshRate=5 optMinimizeSetting=0 "
    "chkMinimizeOnClose=0 chkDisplayTreeView=1 chkListViewPopUp=1 chkChangeScreenPopUp=0 ComboDefaultGroup=Everyone "
    "optSortKey=2 optSortOrder=0 comboFontSizeDisplay=8 chkFontBoldDisplay=0 txtScreenTop=600 txtScreenLeft=600 "
    "txtScreenWidth=10710 txtScreenHeight=7005 txtStatusColumnWidth=2000 txtNameColumnWidth=1400 "
    "txtPhoneColumnWidth=1100 txtDueBackColumnWidth=1300 txtCommentsColumnWidth=1300 txtLastModifiedColumnWidth=4000 "
    "optUserSecurityLevel=0 optIconSize=0 optToolBarText=1").split(' ');

// A template far from every factory value, so that a setting not loaded or
// not saved shows.
void customTemplate(Database &db)
{
    db.execute("INSERT INTO GroupTable (GroupName) VALUES (?), (?)", {"Sales", "Support"});
    db.execute("UPDATE NewUserDefaultsTable SET AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 0, "
               "AutoMinimize = 1, RefreshRate = 10, MinimizeSetting = 2, MinimizeOnClose = 1, DisplayTreeView = 0, "
               "ListViewPopUp = 0, ChangeScreenPopUp = 1, DefaultGroup = ?, SortKey = 6, SortOrder = 1, "
               "FontSizeDisplay = 13, FontBoldDisplay = 1, ScreenTop = -1200, ScreenLeft = 333, ScreenWidth = 9001, "
               "ScreenHeight = 7002, StatusColumnWidth = 2101, NameColumnWidth = 1402, PhoneColumnWidth = 1103, "
               "DueBackColumnWidth = 1304, CommentsColumnWidth = 1305, LastModifiedColumnWidth = 4006, "
               "UserSecurityLevel = 1, IconSize = 1, ToolBarText = 0, Password = ?, PictureFileName = ?, "
               "StatusColumnOrder = 9, SortColumnName = ?, SplitterPositionVertical = 1000",
               {"Support", "pw", "p.jpg", "Phone"});
}

}  // namespace

class TestNewUser : public QObject {
    Q_OBJECT

private slots:
    // Open, then OK, or Reset and then Cancel or OK: every setting shows as
    // stored (or its factory value after Reset); the columns the window does
    // not show are left alone.
    void templateRoundTrip_data()
    {
        QTest::addColumn<bool>("reset");
        QTest::addColumn<int>("button");
        QTest::newRow("OK") << false << 0;
        QTest::newRow("Reset, Cancel: nothing written") << true << 1;
        QTest::newRow("Reset, OK: factory values written") << true << 0;
    }
    void templateRoundTrip()
    {
        QFETCH(bool, reset);
        QFETCH(int, button);
        Console c(customTemplate);
        Database other = c.other();
        const QMap<QString, QString> before = templateRow(other);
        const long long counted = counter(other);
        QMap<QString, QString> expected = before;
        frmNewUser d;
        d.show();
        QCOMPARE(control<QComboBox>(&d, "ComboDefaultGroup")->count(), 3);  // Everyone, Sales, Support
        if (reset)
            d.cmdButtons_Click(3);
        for (const QString &s : Factory) {
            const QString shown = reset ? s.section('=', 1) : before.value(column(s));
            QVERIFY2(shownValue(&d, s.section('=', 0, 0)) == shown, qPrintable(s));
            if (button == 0)
                expected[column(s)] = shown;
        }
        QCOMPARE(boxes(), reset ? QStringList{Msg::defaultTitle() + "|Values have been reset to factory defaults, but "
                                                                   "not saved (yet)."} : QStringList());
        QCOMPARE(templateRow(other), before);
        d.cmdButtons_Click(button);
        QVERIFY(!d.isVisible());
        QCOMPARE(templateRow(other), expected);
        QCOMPARE(counter(other), counted);
    }

    void numbersAsTyped_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");  // "error" when the store refuses it
        QTest::newRow("rate with text behind") << "ComboRefreshRate" << "12 minutes" << "12";
        QTest::newRow("rate with no number") << "ComboRefreshRate" << "often" << "0";
        QTest::newRow("font below the range") << "comboFontSizeDisplay" << "7" << "8";
        QTest::newRow("font above the range") << "comboFontSizeDisplay" << "99" << "15";
        QTest::newRow("blanks around") << "txtScreenLeft" << "  -450  " << "-450";
        QTest::newRow("half rounds to even") << "txtStatusColumnWidth" << "2500.5" << "2500";
        QTest::newRow("exponent") << "txtPhoneColumnWidth" << "1.1e3" << "1100";
        QTest::newRow("empty") << "txtDueBackColumnWidth" << "" << "0";
        QTest::newRow("too large for the column") << "txtScreenTop" << "99999" << "error";
    }
    void numbersAsTyped()
    {
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        Console c;
        Database other = c.other();
        const bool refused = stored == "error";
        const QString old = templateRow(other).value(column(control));
        frmNewUser d;
        d.show();
        setValue(&d, control, typed);
        d.cmdButtons_Click(0);
        QCOMPARE(templateRow(other).value(column(control)), refused ? old : stored);
        QCOMPARE(Msg::transcript().size(), int(refused));
        QCOMPARE(d.isVisible(), refused);
    }
};

QTEST_MAIN(TestNewUser)
#include "tst_newuser.moc"
