// The new-user template: load and save, numbers read from the start of the
// text, the factory Reset, and Cancel writing nothing.
#include "UsersTest.h"

#include "users/frmNewUser.h"

#include <QComboBox>
#include <QRegularExpression>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

const QString Template = "SELECT * FROM NewUserDefaultsTable";

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

}  // namespace

class TestNewUser : public QObject {
    Q_OBJECT

private slots:
    // Open, then OK, or Reset and then Cancel or OK: every setting shows as
    // stored (or its factory value after Reset) and OK writes what is shown,
    // numbers read from the start of the text; the columns the window does
    // not show are left alone.
    void templateRoundTrip_data()
    {
        QTest::addColumn<bool>("reset");
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("typed");   // "control=text", typed before the button
        QTest::addColumn<QString>("stored");  // what its column gets, or the run-time error refusing the whole OK
        QTest::newRow("OK") << false << 0 << "" << "";
        QTest::newRow("Reset, Cancel: nothing written") << true << 1 << "" << "";
        QTest::newRow("Reset, OK: factory values written") << true << 0 << "" << "";
        QTest::newRow("rate with text behind") << false << 0 << "ComboRefreshRate=12 minutes" << "12";
        QTest::newRow("rate with no number") << false << 0 << "ComboRefreshRate=often" << "0";
        QTest::newRow("font below the range") << false << 0 << "comboFontSizeDisplay=7" << "8";
        QTest::newRow("font above the range") << false << 0 << "comboFontSizeDisplay=99" << "15";
        QTest::newRow("blanks around") << false << 0 << "txtScreenLeft=  -450  " << "-450";
        QTest::newRow("half rounds to even") << false << 0 << "txtStatusColumnWidth=2500.5" << "2500";
        QTest::newRow("exponent") << false << 0 << "txtPhoneColumnWidth=1.1e3" << "1100";
        QTest::newRow("too large for the column") << false << 0 << "txtScreenTop=99999" << "Run-time error '275':";
    }
    void templateRoundTrip()
    {
        QFETCH(bool, reset);
        QFETCH(int, button);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        // A template far from every factory value, so that a setting not
        // loaded or not saved shows.
        Console c([](Database &db) {
            db.execute("INSERT INTO GroupTable (GroupName) VALUES (?), (?)", {"Sales", "Support"});
            db.execute("UPDATE NewUserDefaultsTable SET AutoClearComments = 1, AutoLogIn = 0, AutoLogOut = 0, "
                       "AutoMinimize = 1, RefreshRate = 10, MinimizeSetting = 2, MinimizeOnClose = 1, "
                       "DisplayTreeView = 0, ListViewPopUp = 0, ChangeScreenPopUp = 1, DefaultGroup = ?, SortKey = 6, "
                       "SortOrder = 1, FontSizeDisplay = 13, FontBoldDisplay = 1, ScreenTop = -1200, ScreenLeft = 333, "
                       "ScreenWidth = 9001, ScreenHeight = 7002, StatusColumnWidth = 2101, NameColumnWidth = 1402, "
                       "PhoneColumnWidth = 1103, DueBackColumnWidth = 1304, CommentsColumnWidth = 1305, "
                       "LastModifiedColumnWidth = 4006, UserSecurityLevel = 1, IconSize = 1, ToolBarText = 0, "
                       "Password = ?, PictureFileName = ?, StatusColumnOrder = 9, SortColumnName = ?, "
                       "SplitterPositionVertical = 1000", {"Support", "pw", "p.jpg", "Phone"});
        });
        Database other = c.other();
        const QMap<QString, QString> before = record(other, Template);
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
        const bool refused = stored.startsWith("Run-time");
        if (!typed.isEmpty()) {
            setValue(&d, typed.section('=', 0, 0), typed.section('=', 1));
            expected[column(typed)] = stored;
        }
        d.cmdButtons_Click(button);
        const QString resetBox = Msg::defaultTitle() + "|Values have been reset to factory defaults, but not saved (yet).";
        QCOMPARE(boxes(), QStringList(reset, resetBox) + QStringList(refused, Msg::defaultTitle() + '|' + stored));
        QCOMPARE(d.isVisible(), refused);
        QCOMPARE(record(other, Template), refused ? before : expected);
        QCOMPARE(counter(other), counted);
    }
};

QTEST_MAIN(TestNewUser)
#include "tst_newuser.moc"
