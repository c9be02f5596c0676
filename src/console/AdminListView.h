#pragma once

#include <QAbstractTableModel>
#include <QPixmap>
#include <QStringList>
#include <QTreeView>
#include <QVector>

// The rows of the main list. It holds what the last rebuild read from the
// database and nothing else: every rebuild starts from an empty model.
// Rows are first staged (addRow, setSubItem) and shown together by commit(),
// so the view never paints a half-built list.
class AdminListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Role { IconKeyRole = Qt::UserRole + 1 };

    explicit AdminListModel(QObject *parent = nullptr);

    // Column headers
    void clearHeaders();
    void addHeader(const QString &text);
    int headerCount() const { return int(m_headers.size()); }
    QString headerText(int column) const { return m_headers.value(column); }

    // Rows
    void clearRows();          // empties the shown list and the staging area
    int addRow(const QString &text, const QString &iconKey = QString());
    void setSubItem(int stagedRow, int n, const QString &text);  // n from 1
    void setChecked(int stagedRow, bool checked);
    void setSorted(bool sorted) { m_sorted = sorted; }
    bool sorted() const { return m_sorted; }
    // Rows show their check mark (until the headers are cleared).
    void setShowsChecks(bool on) { m_showsChecks = on; }
    // Shows the staged rows, in ascending text order when sorted.
    void commit();

    // Shown rows, from 0
    int count() const { return m_rowCount; }
    QString text(int row) const { return cell(row, 0); }
    QString subItem(int row, int n) const { return cell(row, n); }
    QString iconKey(int row) const;
    bool checked(int row) const { return m_checked.value(row, false); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QString cell(int row, int column) const;
    int stride() const { return std::max(1, int(m_headers.size())); }

    QStringList m_headers;
    bool m_sorted = true;
    bool m_showsChecks = false;
    // Shown rows: cells row-major, `stride()` cells a row.
    QVector<QString> m_cells;
    QVector<quint8> m_icons;  // index into m_iconKeys, 0 = none
    QVector<bool> m_checked;
    int m_rowCount = 0;
    // Staged rows
    QVector<QString> m_stageCells;
    QVector<quint8> m_stageIcons;
    QVector<bool> m_stageChecked;
    int m_stageRows = 0;
    int m_stageStride = 1;
    // Image keys met so far; index 0 is "no image"
    QStringList m_iconKeys{QString()};
    QVector<QPixmap> m_iconPixmaps{QPixmap()};
};

// ListViewMain: the report view of the selected kind's rows. Forwards the
// mouse and key events the console routes (click, double click, key down,
// mouse move, mouse up) as signals.
class AdminListView : public QTreeView {
    Q_OBJECT

public:
    explicit AdminListView(QWidget *parent = nullptr);

    AdminListModel *list() const { return m_model; }

    // Header widths in twips
    void setHeaderWidth(int column, int twips);
    int headerWidth(int column) const;
    // W of the layouts, in twips.
    int widthTwips() const;

    // Row state, rows from 0
    bool isSelected(int row) const;
    void setSelected(int row, bool selected);
    int selectedCount() const;
    // The current row ("SelectedItem"), selected or not; -1 when none.
    int selectedItem() const;
    QString selectedItemText() const;
    void setSelectedItem(int row);

signals:
    void listClick();
    void listDoubleClick();
    void listKeyDown(int key);
    void listMouseMove();
    void listMouseUp(Qt::MouseButton button);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    AdminListModel *m_model;
    QVector<int> m_sectionSizes;  // kept across a rebuild of the rows
};
