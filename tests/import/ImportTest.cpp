#include "ImportTest.h"

#include "console/frmMain.h"
#include "import/frmImport01.h"
#include "import/frmImport02.h"
#include "platform/FileDialogs.h"
#include "platform/Modal.h"

#include <QComboBox>
#include <QFile>
#include <QProgressBar>
#include <QRadioButton>
#include <QTreeWidget>

namespace ImportTest {

QString comboText(QChar code)
{
    switch (code.unicode()) {
    case 'I': return "User ID";
    case 'N': return "User Name";
    case 'P': return "Phone Number";
    case '-': return "< Not Used >";
    default: return "";
    }
}

Run runImport(ConsoleTest::Console &c, const QString &file, const QString &map, bool tab,
              const std::function<void()> &beforeNext, const QList<int> &answers)
{
    Run run;
    Msg::clearTranscript();
    Msg::queueAnswers(answers);
    FileDialogs::queueAnswers({file});
    Modal::setHandler([&](QDialog *d) {
        run.windows << d->objectName();
        if (auto *first = qobject_cast<frmImport01 *>(d)) {
            for (int i = 0; i < 3; ++i)
                UsersTest::control<QComboBox>(first, QString("Combo%1").arg(i + 1))->setEditText(comboText(map[i]));
            UsersTest::control<QRadioButton>(first, tab ? "optSeperatorTab" : "optSeperatorComma")->setChecked(true);
            if (beforeNext)
                beforeNext();
            first->cmdButtons_Click(0);
        } else if (auto *second = qobject_cast<frmImport02 *>(d)) {
            auto *bar = UsersTest::control<QProgressBar>(second, "ProgressBar");
            run.barMaximum = bar->maximum();
            second->Form_Activate();
            run.barValue = bar->value();
        } else if (d->objectName() == "frmImportErrors") {
            auto *list = UsersTest::control<QTreeWidget>(d, "lvImpErrors");
            for (int i = 0; i < list->topLevelItemCount(); ++i) {
                const QTreeWidgetItem *item = list->topLevelItem(i);
                run.errorList << item->text(0) + '|' + item->text(1) + '|' + item->text(2);
            }
            d->reject();
        } else {
            d->reject();
        }
    });
    c.w().ToolbarMain_ButtonClick("Import");
    Modal::setHandler({});
    run.boxes = UsersTest::boxes();
    return run;
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate) || f.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

QStringList newUsers(Database &db)
{
    const QString all = UsersTest::rows(
        db, "SELECT e.UID, e.Name, e.Phone, (SELECT count(*) FROM EmployeeSettingsTable s WHERE s.Name = e.Name) "
            "FROM EmployeeTable e WHERE e.Name NOT IN ('Guest', 'Existing') ORDER BY e.rowid");
    return all.isEmpty() ? QStringList() : all.split('\n');
}

QStringList logTexts(Database &db)
{
    const QString all = UsersTest::rows(db, "SELECT ErrorText FROM ImportErrorLog ORDER BY rowid");
    return all.isEmpty() ? QStringList() : all.split('\n');
}

QString results(qint64 lines, qint64 errors)
{
    if (errors == 0)
        return QString("Import Results|Import finished - %1 records processed. No errors were detected.").arg(lines);
    return QString("Import Results|Import finished - %1 records processed. %2 error(s) occurred.\rWould you like to "
                   "examine the Import Error Log?")
        .arg(lines)
        .arg(errors);
}

}  // namespace ImportTest
