#include "console/AdminListView.h"

#include "console/Images.h"
#include "platform/Twips.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>
#include <numeric>

namespace {
// The list's default column width when a header is added without one.
constexpr int DefaultHeaderTwips = 1440;
}  // namespace

// ------------------------------------------------------------ AdminListModel

AdminListModel::AdminListModel(QObject *parent) : QAbstractTableModel(parent) {}

void AdminListModel::clearHeaders()
{
    beginResetModel();
    m_headers.clear();
    m_showsChecks = false;
    m_cells.clear();
    m_icons.clear();
    m_checked.clear();
    m_rowCount = 0;
    endResetModel();
}

void AdminListModel::addHeader(const QString &text)
{
    beginResetModel();
    // Rows keep their cells; a new column is empty in each of them.
    const int oldStride = stride();
    m_headers << text;
    if (m_rowCount > 0 && stride() != oldStride) {
        QVector<QString> cells(qsizetype(m_rowCount) * stride());
        for (int r = 0; r < m_rowCount; ++r)
            for (int c = 0; c < oldStride; ++c)
                cells[qsizetype(r) * stride() + c] = std::move(m_cells[qsizetype(r) * oldStride + c]);
        m_cells = std::move(cells);
    }
    endResetModel();
}

void AdminListModel::clearRows()
{
    beginResetModel();
    m_cells.clear();
    m_icons.clear();
    m_checked.clear();
    m_rowCount = 0;
    endResetModel();
    m_stageCells.clear();
    m_stageIcons.clear();
    m_stageChecked.clear();
    m_stageRows = 0;
    m_stageStride = stride();
}

int AdminListModel::addRow(const QString &text, const QString &iconKey)
{
    if (m_stageRows == 0)
        m_stageStride = stride();
    quint8 icon = 0;
    if (!iconKey.isEmpty()) {
        qsizetype i = m_iconKeys.indexOf(iconKey);
        if (i < 0) {
            m_iconKeys << iconKey;
            m_iconPixmaps << Images::ImageListSmall().value(iconKey);
            i = m_iconKeys.size() - 1;
        }
        icon = quint8(i);
    }
    m_stageCells.resize(m_stageCells.size() + m_stageStride);
    m_stageCells[qsizetype(m_stageRows) * m_stageStride] = text;
    m_stageIcons << icon;
    m_stageChecked << false;
    return m_stageRows++;
}

void AdminListModel::setSubItem(int stagedRow, int n, const QString &text)
{
    if (stagedRow < 0 || stagedRow >= m_stageRows || n < 1 || n >= m_stageStride)
        return;
    m_stageCells[qsizetype(stagedRow) * m_stageStride + n] = text;
}

void AdminListModel::setChecked(int stagedRow, bool checked)
{
    if (stagedRow >= 0 && stagedRow < m_stageRows)
        m_stageChecked[stagedRow] = checked;
}

void AdminListModel::commit()
{
    const int n = m_stageRows;
    const int s = m_stageStride;
    QVector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    if (m_sorted) {
        auto less = [&](int a, int b) {
            return QString::compare(m_stageCells[qsizetype(a) * s], m_stageCells[qsizetype(b) * s],
                                    Qt::CaseInsensitive) < 0;
        };
        // The query's order is nearly always the list's order already.
        if (!std::is_sorted(order.begin(), order.end(), less))
            std::stable_sort(order.begin(), order.end(), less);
    }
    beginResetModel();
    m_cells.clear();
    m_cells.resize(qsizetype(n) * stride());
    m_icons.resize(n);
    m_checked.resize(n);
    const int common = std::min(s, stride());
    for (int r = 0; r < n; ++r) {
        const int from = order[r];
        for (int c = 0; c < common; ++c)
            m_cells[qsizetype(r) * stride() + c] = std::move(m_stageCells[qsizetype(from) * s + c]);
        m_icons[r] = m_stageIcons[from];
        m_checked[r] = m_stageChecked[from];
    }
    m_rowCount = n;
    endResetModel();
    m_stageCells = QVector<QString>();
    m_stageIcons = QVector<quint8>();
    m_stageChecked = QVector<bool>();
    m_stageRows = 0;
}

QString AdminListModel::cell(int row, int column) const
{
    if (row < 0 || row >= m_rowCount || column < 0 || column >= stride())
        return QString();
    return m_cells[qsizetype(row) * stride() + column];
}

QString AdminListModel::iconKey(int row) const
{
    if (row < 0 || row >= m_rowCount)
        return QString();
    return m_iconKeys.value(m_icons[row]);
}

int AdminListModel::rowCount(const QModelIndex &parent) const { return parent.isValid() ? 0 : m_rowCount; }

int AdminListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant AdminListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rowCount)
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
        return cell(index.row(), index.column());
    case Qt::DecorationRole:
        if (index.column() == 0 && m_icons[index.row()] != 0)
            return m_iconPixmaps.value(m_icons[index.row()]);
        return QVariant();
    case Qt::CheckStateRole:
        if (index.column() == 0 && m_showsChecks)
            return m_checked[index.row()] ? Qt::Checked : Qt::Unchecked;
        return QVariant();
    case IconKeyRole:
        return index.column() == 0 ? iconKey(index.row()) : QString();
    default:
        return QVariant();
    }
}

QVariant AdminListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headers.value(section);
    return QVariant();
}

Qt::ItemFlags AdminListModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

// ------------------------------------------------------------- AdminListView

AdminListView::AdminListView(QWidget *parent) : QTreeView(parent), m_model(new AdminListModel(this))
{
    setModel(m_model);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    // Ctrl and Shift pick several rows: the Delete windows take every selected one.
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setAllColumnsShowFocus(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSortingEnabled(false);
    setMouseTracking(true);
    header()->setStretchLastSection(false);
    header()->setSectionsClickable(false);  // a header click sorts nothing
    header()->setSectionsMovable(false);
    header()->setDefaultSectionSize(Twips::toPixelsX(DefaultHeaderTwips));
    header()->setMinimumSectionSize(0);
    // Refilling the rows resets the header; the widths the layout gave the
    // columns stay as long as the columns do.
    connect(m_model, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
        m_sectionSizes.clear();
        for (int i = 0; i < header()->count(); ++i)
            m_sectionSizes << header()->sectionSize(i);
    });
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        if (header()->count() == m_sectionSizes.size())
            for (int i = 0; i < m_sectionSizes.size(); ++i)
                header()->resizeSection(i, m_sectionSizes[i]);
    });
}

void AdminListView::setHeaderWidth(int column, int twips)
{
    header()->resizeSection(column, std::max(0, Twips::toPixelsX(twips)));
}

int AdminListView::headerWidth(int column) const { return Twips::fromPixelsX(header()->sectionSize(column)); }

int AdminListView::widthTwips() const
{
    // The width the columns may take: inside the frame, with room kept for
    // the vertical scroll bar, so that a long list does not push the columns
    // under a horizontal one.
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, verticalScrollBar());
    return Twips::fromPixelsX(std::max(0, width() - 2 * frameWidth() - bar));
}

bool AdminListView::isSelected(int row) const
{
    return row >= 0 && row < m_model->count() && selectionModel()->isRowSelected(row, QModelIndex());
}

void AdminListView::setSelected(int row, bool selected)
{
    if (row < 0 || row >= m_model->count())
        return;
    const QModelIndex idx = m_model->index(row, 0);
    if (selected)
        selectionModel()->setCurrentIndex(idx, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    else if (isSelected(row))
        selectionModel()->select(idx, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
}

int AdminListView::selectedCount() const { return int(selectionModel()->selectedRows().size()); }

int AdminListView::selectedItem() const
{
    const QModelIndex idx = currentIndex();
    return idx.isValid() ? idx.row() : -1;
}

QString AdminListView::selectedItemText() const { return m_model->text(selectedItem()); }

void AdminListView::setSelectedItem(int row)
{
    if (row < 0 || row >= m_model->count())
        return;
    selectionModel()->setCurrentIndex(m_model->index(row, 0), QItemSelectionModel::NoUpdate);
}

void AdminListView::mouseReleaseEvent(QMouseEvent *event)
{
    QTreeView::mouseReleaseEvent(event);
    emit listMouseUp(event->button());
    if (event->button() == Qt::LeftButton)
        emit listClick();
}

void AdminListView::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTreeView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton)
        emit listDoubleClick();
}

void AdminListView::mouseMoveEvent(QMouseEvent *event)
{
    QTreeView::mouseMoveEvent(event);
    emit listMouseMove();
}

void AdminListView::keyPressEvent(QKeyEvent *event)
{
    emit listKeyDown(event->key());
    QTreeView::keyPressEvent(event);
}
