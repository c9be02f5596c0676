#include "groups/TwoListEditor.h"

#include <QKeyEvent>
#include <QListView>

NameListModel::NameListModel(const QIcon &icon, QObject *parent) : QAbstractListModel(parent), m_icon(icon) {}

int NameListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_names.size());
}

QVariant NameListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_names.size())
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return m_names.at(index.row());
    case Qt::DecorationRole:
        return m_icon;
    default:
        return QVariant();
    }
}

void NameListModel::setNames(const QStringList &names)
{
    beginResetModel();
    m_names = names;
    endResetModel();
}

void NameListModel::append(const QString &name)
{
    const int row = int(m_names.size());
    beginInsertRows(QModelIndex(), row, row);
    m_names.append(name);
    endInsertRows();
}

QString NameListModel::take(int row)
{
    beginRemoveRows(QModelIndex(), row, row);
    QString name = m_names.takeAt(row);
    endRemoveRows();
    return name;
}

TwoListEditor::TwoListEditor(QListView *left, QListView *right, const QIcon &icon, QObject *parent)
    : QObject(parent), m_leftView(left), m_rightView(right), m_left(new NameListModel(icon, this)),
      m_right(new NameListModel(icon, this))
{
    for (QListView *view : {left, right}) {
        // Every row is one line with the same icon: the view need not
        // measure each of thousands of rows.
        view->setUniformItemSizes(true);
        // Laid out a slice at a time: a move then never waits for all
        // the rows of the list to be placed again.
        view->setLayoutMode(QListView::Batched);
        view->setBatchSize(200);
        view->setSelectionMode(QAbstractItemView::SingleSelection);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->installEventFilter(this);
    }
    left->setModel(m_left);
    right->setModel(m_right);
    connect(left, &QAbstractItemView::clicked, this, [this](const QModelIndex &i) { moveFromLeft(i.row()); });
    connect(right, &QAbstractItemView::clicked, this, [this](const QModelIndex &i) { moveFromRight(i.row()); });
}

void TwoListEditor::moveFromLeft(int row) { move(m_left, m_right, row); }
void TwoListEditor::moveFromRight(int row) { move(m_right, m_left, row); }

void TwoListEditor::move(NameListModel *from, NameListModel *to, int row)
{
    if (row < 0 || row >= from->rowCount())
        return;
    // When the current item goes the view makes the next one current, so
    // the keyboard can go on from there.
    to->append(from->take(row));
}

bool TwoListEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
        return false;
    auto *view = static_cast<QListView *>(watched);
    if (!view->isEnabled())
        return false;
    const QModelIndex current = view->currentIndex();
    if (current.isValid()) {
        if (view == m_leftView)
            moveFromLeft(current.row());
        else
            moveFromRight(current.row());
    }
    return true;
}
