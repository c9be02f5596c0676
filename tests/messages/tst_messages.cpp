// Messages: the removal from the console's list, one transaction a message
// with Retry or Cancel, and the preview of one person's messages with its
// marking as deleted.
#include "users/UsersTest.h"

#include "console/AdminListView.h"
#include "console/frmMain.h"
#include "messages/MessageStore.h"
#include "messages/frmMsgsPreview.h"
#include "platform/Modal.h"
#include "platform/ReportPrinter.h"
#include "logs/PdfText.h"

#include <QAction>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QTemporaryDir>
#include <QPushButton>
#include <QRegularExpression>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>

#include <sqlite3.h>

using namespace ConsoleTest;
using namespace UsersTest;

namespace {

const QString Odd = "O'Brien \"Jo\" [x]*?; %_";

// id|to|from|messageFrom|category|subject|sent ("<null>" for Null)
void seedMessages(Database &db)
{
    const QStringList rows = {
        "2|Ann|Bob|<null>|Unread|Lunch?|39000.5",
        "3|Ann|Bob|Reception|Read|Call back|39001.25",
        "4|Bob|Ann|<null>|Draft|Unsent reply|39002",
        "5|Ann|Cleo|<null>|Deleted|Old news|39003",
        "6|Bob|Cleo|<null>|Draft|Cleo's draft|<null>",
        "7|Ann|Dan|<null>|<null>|No category|39004",
        "8|Ann\tSmith|Bob|<null>|Unread|Tabbed name|39005",
        "9|" + Odd + "|Bob|<null>|Unread|Odd one|39006",
        "10|Dan|" + Odd + "|<null>|Draft|Odd draft|39007",
    };
    for (const QString &r : rows) {
        const QStringList f = r.split('|');
        QVariantList v;
        for (const QString &x : f)
            v << (x == "<null>" ? QVariant() : QVariant(x));
        db.execute("INSERT INTO MessagesTable (MessageID, SentToName, SentFromName, MessageFrom, Category, "
                   "MessageSubject, SentDateTimeNum, MessageBody) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                   v << QVariant(f[5] + " body\r\nsecond line"));
    }
}

QStringList ids(Database &db) { return rows(db, "SELECT MessageID FROM MessagesTable ORDER BY MessageID").split('\n'); }

void selectMessages(Console &c, const QStringList &selected)
{
    c.clickNode("Messages");
    c.list()->clearSelection();
    for (int i = 0; i < selected.size(); ++i)
        c.clickRow(c.rowOf(selected[i]), Qt::LeftButton, i ? Qt::ControlModifier : Qt::NoModifier);
}

// The statements gdbMain starts while `action` runs.
QStringList statementsDuring(const std::function<void()> &action)
{
    QStringList seen;
    auto trace = [](unsigned, void *hook, void *, void *text) {
        static_cast<QStringList *>(hook)->append(QString::fromUtf8(static_cast<const char *>(text)));
        return 0;
    };
    sqlite3_trace_v2(gdbMain.handle(), SQLITE_TRACE_STMT, trace, &seen);
    action();
    sqlite3_trace_v2(gdbMain.handle(), 0, nullptr, nullptr);
    return seen;
}

QStringList previewTexts(QWidget *preview, int column)
{
    auto *list = control<QTreeWidget>(preview, "listMsgsPreview");
    QStringList out;
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        out << list->topLevelItem(i)->text(column);
    return out;
}

void selectInPreview(QWidget *preview, const QStringList &messageIds)
{
    auto *list = control<QTreeWidget>(preview, "listMsgsPreview");
    list->clearSelection();
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        if (messageIds.contains(list->topLevelItem(i)->text(6))) {
            list->topLevelItem(i)->setSelected(true);
            list->setCurrentItem(list->topLevelItem(i), 0, QItemSelectionModel::NoUpdate);
        }
}

}  // namespace

class TestMessages : public QObject {
    Q_OBJECT

private slots:
    // Each message goes in a transaction of its own, and Counter rises once
    // for the batch. Another program may remove one while the dialog is
    // open, or hold the file as the second message begins: Retry removes it
    // once the file is free, Cancel keeps it and goes on.
    void deleteBatch_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<int>("button");
        QTest::addColumn<QString>("vanishing");  // removed by another program while the dialog is open
        QTest::addColumn<QString>("hold");       // taken by another program as the second message begins
        QTest::addColumn<bool>("retry");
        QTest::addColumn<QStringList>("kept");   // of the selected, what stays
        QTest::addColumn<QString>("shown");
        const QStringList three{"2", "3", "4"};
        const QString error = "An error occured while trying to delete the message ''3''.";
        QTest::newRow("two messages") << QStringList{"2", "6"} << 0 << "" << "" << false << QStringList() << "";
        QTest::newRow("recipient with a tab") << QStringList{"8"} << 0 << "" << "" << false << QStringList() << "";
        QTest::newRow("one removed meanwhile") << QStringList{"2", "3"} << 0 << "3" << "" << false << QStringList() << "";
        QTest::newRow("Cancel removes nothing") << three << 1 << "" << "" << false << three << "";
        QTest::newRow("nothing selected") << QStringList() << 0 << "" << "" << false << QStringList()
                                          << "No item selected to delete";
        QTest::newRow("write lock, Retry") << three << 0 << "" << "lock" << true << QStringList() << error;
        QTest::newRow("write lock, Cancel keeps it") << three << 0 << "" << "lock" << false << QStringList{"3"} << error;
        QTest::newRow("reader at commit, Retry") << three << 0 << "" << "reader" << true << QStringList() << error;
        QTest::newRow("reader at commit, Cancel rolls back") << three << 0 << "" << "reader" << false << QStringList{"3"}
                                                             << error;
    }
    void deleteBatch()
    {
        QFETCH(QStringList, selected);
        QFETCH(int, button);
        QFETCH(QString, vanishing);
        QFETCH(QString, hold);
        QFETCH(bool, retry);
        QFETCH(QStringList, kept);
        QFETCH(QString, shown);
        Console c(seedMessages);
        Database other = c.other();
        const long long before = counter(other);
        QStringList remaining = ids(other);
        selectMessages(c, selected);
        QStringList listed;
        bool closedItself = false;
        QStringList statements;
        Msg::queueAnswers({retry ? Msg::Retry : Msg::Cancel});
        Modal::setHandler([&](QDialog *d) {
            auto *list = control<QListWidget>(d, "lstDeleteMessages");
            for (int i = 0; i < list->count(); ++i)
                listed << list->item(i)->text();
            if (list->count() == 0) {
                closedItself = QTest::qWaitFor([d] { return !d->isVisible(); }, 2000);
                return;
            }
            if (!vanishing.isEmpty())
                other.execute("DELETE FROM MessagesTable WHERE MessageID = ?", {vanishing});
            auto click = [&] { QTest::mouseClick(control<QPushButton>(d, QString("cmdButtons_%1").arg(button)), Qt::LeftButton); };
            if (hold.isEmpty())
                statements = statementsDuring(click);
            else
                whileHeld(c, hold, click, 2);
        });
        c.keyInList(Qt::Key_Delete);
        Modal::setHandler({});

        QStringList expectedEntries;
        for (const QString &id : selected)
            expectedEntries << id + '\t' + c.column(1).value(c.rowOf(id));
        QCOMPARE(listed, expectedEntries);
        QCOMPARE(boxes(), shown.isEmpty() ? QStringList() : QStringList{Msg::defaultTitle() + '|' + shown});
        QVERIFY(hold.isEmpty() || Msg::transcript()[0].buttons == Msg::Buttons::RetryCancel);
        QCOMPARE(closedItself, selected.isEmpty());
        for (const QString &id : selected + QStringList{vanishing})
            if (!kept.contains(id))
                remaining.removeOne(id);
        QCOMPARE(ids(other), remaining);
        const bool ok = button == 0 && !selected.isEmpty();
        QCOMPARE(counter(other), before + ok);
        // One transaction a message.
        if (ok && hold.isEmpty())
            QCOMPARE(statements.filter(QRegularExpression("^BEGIN")).size(), selected.size());
        QVERIFY(!gdbMain.inTransaction());
    }

    // The preview shows what the person's TAVELLO program would: messages to
    // them and their own drafts, less those marked deleted.
    void previewRows_data()
    {
        QTest::addColumn<QString>("person");
        QTest::addColumn<QStringList>("rows");  // id|category|from|subject|sent|sent by
        QTest::newRow("Ann") << "Ann"
                             << QStringList{"2|Unread|Bob|Lunch?|2006-10-10 12:00:00|Bob",
                                            "3|Read|Reception|Call back|2006-10-11 06:00:00|Bob",
                                            "4|Draft|Ann|Unsent reply|2006-10-12|Ann"};
        QTest::newRow("Bob: others' drafts addressed to him count")
            << "Bob" << QStringList{"4|Draft|Ann|Unsent reply|2006-10-12|Ann", "6|Draft|Cleo|Cleo's draft||Cleo"};
        QTest::newRow("quotes and wildcards are plain text") << Odd
                                                             << QStringList{"9|Unread|Bob|Odd one|2006-10-16|Bob",
                                                                            "10|Draft|" + Odd + "|Odd draft|2006-10-17|" + Odd};
        QTest::newRow("no one") << "" << QStringList();
    }
    void previewRows()
    {
        QFETCH(QString, person);
        QFETCH(QStringList, rows);
        Console c(seedMessages);
        QStringList shown;
        for (const Messages::PreviewRow &r : Messages::previewRows(gdbMain, person))
            shown << QStringList{r.id, r.category, r.from, r.subject, r.sent, r.sentBy}.join('|');
        QCOMPARE(shown, rows);
    }

    // Reached from the Messages list by a double click or the Edit entry,
    // for the chosen message's recipient; its toolbar, and its Delete, which
    // marks the messages and leaves them in the console's list.
    void preview_data()
    {
        QTest::addColumn<QString>("open");     // "double click", "entry", "pop-up"
        QTest::addColumn<QString>("row");      // the console's row chosen
        QTest::addColumn<QStringList>("marked");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("locale");
        QTest::newRow("double click, mark two") << "double click" << "3" << QStringList{"2", "4"} << int(Msg::Yes) << "C";
        QTest::newRow("Edit entry, answer No") << "entry" << "2" << QStringList{"3"} << int(Msg::No) << "C";
        QTest::newRow("pop-up, decimal comma locale") << "pop-up" << "3" << QStringList{"3"} << int(Msg::Yes) << "de_DE";
        QTest::newRow("nothing marked") << "double click" << "2" << QStringList() << int(Msg::Yes) << "C";
    }
    void preview()
    {
        QFETCH(QString, open);
        QFETCH(QString, row);
        QFETCH(QStringList, marked);
        QFETCH(int, answer);
        QFETCH(QString, locale);
        Console c(seedMessages);
        Database other = c.other();
        const long long before = counter(other);
        selectMessages(c, {row});
        QLocale::setDefault(QLocale(locale));
        QString person;
        QStringList tips, keys, enabled, shownBefore, shownAfter;
        QString viewed;
        const double start = Messages::dateNumber(QDateTime::currentDateTime());
        Msg::queueAnswers({answer});
        Modal::setHandler([&](QDialog *d) {
            if (d->objectName() == "frmViewMessage") {
                viewed = control<QLineEdit>(d, "txtSubject")->text() + '|' + control<QLineEdit>(d, "txtFrom")->text() +
                         '|' + control<QPlainTextEdit>(d, "txtBody")->toPlainText();
                return;
            }
            auto *preview = qobject_cast<frmMsgsPreview *>(d);
            QVERIFY(preview);
            person = preview->person();
            for (QAction *a : preview->toolbar()->actions()) {
                keys << a->data().toString();
                tips << a->toolTip();
                enabled << (a->isEnabled() ? "on" : "off");
            }
            shownBefore = previewTexts(d, 6);
            // A double click on a row views it.
            auto *list = control<QTreeWidget>(d, "listMsgsPreview");
            const QPoint second = list->visualItemRect(list->topLevelItem(1)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, second);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, second);
            selectInPreview(d, marked);
            preview->button("Delete")->trigger();
            shownAfter = previewTexts(d, 6);
        });
        if (open == "double click") {
            c.doubleClickRow(c.rowOf(row));
        } else if (open == "entry") {
            QAction *entry = c.w().findChild<QAction *>("mnuPreviewMessages");
            c.w().mnuEdit()->popup(QPoint());  // the menu bar's Edit, opened
            QVERIFY(entry->isVisible() && entry->isEnabled());
            c.w().mnuEdit()->close();
            entry->trigger();
        } else {
            QTimer::singleShot(0, [&] {
                QTRY_VERIFY(c.w().mnuEdit()->isVisible());
                c.w().findChild<QAction *>("mnuPreviewMessages")->trigger();
                c.w().mnuEdit()->close();
            });
            c.clickRow(c.rowOf(row), Qt::RightButton);
        }
        Modal::setHandler({});
        QLocale::setDefault(QLocale::c());

        QCOMPARE(person, QString("Ann"));
        QCOMPARE(keys, frmMsgsPreview::buttonKeys());
        QCOMPARE(keys, (QStringList{"View", "New", "Reply", "ReplyAll", "Forward", "eMail", "WYWO", "Print", "Delete",
                                    "Refresh", "Help"}));
        QCOMPARE(tips[0], QString(" View selected TAVELLO message "));
        QCOMPARE(tips[3], QString(" Reply to All (in the TAVELLO user program only) "));
        QCOMPARE(tips[8], QString(" Delete selected message(s) "));
        QCOMPARE(enabled, (QStringList{"on", "off", "off", "off", "off", "off", "off", "on", "on", "on", "on"}));
        QCOMPARE(shownBefore, (QStringList{"2", "3", "4"}));
        QCOMPARE(viewed, QString("Call back|Reception (sent by Bob)|Call back body\nsecond line"));
        const bool marks = !marked.isEmpty() && answer == Msg::Yes;
        QStringList left = shownBefore;
        if (marks)
            for (const QString &id : marked)
                left.removeOne(id);
        QCOMPARE(shownAfter, left);
        QCOMPARE(counter(other), before + marks);
        QCOMPARE(boxes(), marked.isEmpty() ? QStringList()
                                           : QStringList{"Delete Confirmation Required|Are you sure you want to delete "
                                                         "the selected message(s)?"});
        for (const QString &id : marked) {
            const QMap<QString, QString> m = record(other, "SELECT Category, LastUsedDateTimeNum FROM MessagesTable "
                                                           "WHERE MessageID = ?", {id});
            if (!marks) {
                QVERIFY(m["Category"] != "Deleted");
                continue;
            }
            QCOMPARE(m["Category"], QString("Deleted"));
            const double stamp = m["LastUsedDateTimeNum"].toDouble();
            QVERIFY2(stamp >= start - 1e-6 && stamp - start < 2.0 / 86400 + 60.0 / 86400, qPrintable(m["LastUsedDateTimeNum"]));
        }
        // Marked, not removed: the console still lists them, as Deleted.
        c.w().Form_Activate();
        QCOMPARE(c.texts(), ids(other));
        if (marks)
            for (const QString &id : marked)
                QCOMPARE(c.column(5).value(c.rowOf(id)), QString("Deleted"));
    }

    // Print goes through the console's print preview; printed to a PDF
    // file there, each chosen message reads back whole, one removed
    // meanwhile left out.
    void print_data()
    {
        QTest::addColumn<QStringList>("chosen");
        QTest::addColumn<QString>("vanishing");
        QTest::addColumn<QStringList>("lines");  // the PDF's lines after the title
        const QString rule = QString(40, '-');
        QTest::newRow("two messages")
            << QStringList{"2", "3"} << ""
            << QStringList{"Message 2 Unread", "From: Bob", "To: Ann", "Sent: 2006-10-10 12:00:00", "Subject: Lunch?",
                           "Lunch? body", "second line", rule,
                           "Message 3 Read", "From: Reception (sent by Bob)", "To: Ann", "Sent: 2006-10-11 06:00:00",
                           "Subject: Call back", "Call back body", "second line", rule};
        QTest::newRow("one removed meanwhile")
            << QStringList{"2", "4"} << "2"
            << QStringList{"Message 4 Draft", "From: Ann", "To: Bob", "Sent: 2006-10-12", "Subject: Unsent reply",
                           "Unsent reply body", "second line", rule};
    }
    void print()
    {
        QFETCH(QStringList, chosen);
        QFETCH(QString, vanishing);
        QFETCH(QStringList, lines);
        Console c(seedMessages);
        selectMessages(c, {"2"});
        QTemporaryDir dir;
        QPrinter &printer = ReportPrinter::printer();
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(dir.filePath("last.pdf"));
        QStringList windows;
        Modal::setHandler([&](QDialog *d) {
            windows << d->objectName();
            if (d->objectName() == "PrintPreview") {
                control<QPrintPreviewWidget>(d, QString())->print();
                return;
            }
            selectInPreview(d, chosen);
            if (!vanishing.isEmpty())
                c.other().execute("DELETE FROM MessagesTable WHERE MessageID = ?", {vanishing});
            qobject_cast<frmMsgsPreview *>(d)->button("Print")->trigger();
        });
        c.doubleClickRow(c.rowOf("2"));
        Modal::setHandler({});
        QCOMPARE(windows, (QStringList{"frmMsgsPreview", "PrintPreview"}));
        const QString pdf = dir.filePath("TAVELLO-MESSAGES.pdf");
        QStringList printed;
        for (const QString &l : PdfText::lines(PdfText::layout(pdf)))
            printed << l.simplified();
        QCOMPARE(printed.value(0), QString("TAVELLO Messages for Ann"));
        QCOMPARE(printed.mid(1), lines);
        QCOMPARE(messageTexts(), QStringList());
    }

    // The Edit entry stands on the Messages node only, on while a message
    // is chosen.
    void previewEntry_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("row");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<bool>("on");
        QTest::newRow("Messages, a row") << "Messages" << "2" << true << true;
        QTest::newRow("Messages, none") << "Messages" << "" << true << false;
        QTest::newRow("Users") << "Users" << "Guest" << false << false;
    }
    void previewEntry()
    {
        QFETCH(QString, node);
        QFETCH(QString, row);
        QFETCH(bool, visible);
        QFETCH(bool, on);
        Console c(seedMessages);
        c.clickNode(node);
        c.list()->clearSelection();
        if (!row.isEmpty())
            c.clickRow(c.rowOf(row));
        c.w().SubSetMenusAndToolBarButtons();
        QAction *entry = c.w().findChild<QAction *>("mnuPreviewMessages");
        QCOMPARE(entry->isVisible(), visible);
        QCOMPARE(entry->isEnabled(), on);
    }
};

QTEST_MAIN(TestMessages)
#include "tst_messages.moc"
