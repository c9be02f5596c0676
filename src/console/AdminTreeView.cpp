#include "console/AdminTreeView.h"

#include "console/Images.h"

#include <QHeaderView>
#include <QMouseEvent>

AdminTreeView::AdminTreeView(QWidget *parent) : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setColumnCount(1);
    setRootIsDecorated(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setDragEnabled(false);
    setMouseTracking(true);
    setIconSize(QSize(16, 16));
    // The tree is as wide as the banner; a longer text scrolls, it is not cut.
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    header()->setStretchLastSection(false);
    setTextElideMode(Qt::ElideNone);
}

QTreeWidgetItem *AdminTreeView::node(const QString &key) const
{
    for (QTreeWidgetItemIterator it(const_cast<AdminTreeView *>(this)); *it; ++it)
        if ((*it)->data(0, Qt::UserRole).toString() == key)
            return *it;
    return nullptr;
}

QString AdminTreeView::key(const QTreeWidgetItem *item) const
{
    return item ? item->data(0, Qt::UserRole).toString() : QString();
}

QTreeWidgetItem *AdminTreeView::addNode(const QString &key, const QString &text, const QString &imageKey,
                                        QTreeWidgetItem *parent)
{
    auto *item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(this);
    item->setText(0, text);
    item->setData(0, Qt::UserRole, key);
    item->setIcon(0, QIcon(Images::TBMainSm().value(imageKey)));
    return item;
}

QTreeWidgetItem *AdminTreeView::selectedNode() const
{
    const QList<QTreeWidgetItem *> sel = selectedItems();
    return sel.isEmpty() ? nullptr : sel.first();
}

void AdminTreeView::selectNode(QTreeWidgetItem *item)
{
    if (!item)
        return;
    setCurrentItem(item);
    item->setSelected(true);
}

void AdminTreeView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;  // only the left button chooses a node
    const QPoint pos = event->position().toPoint();
    QTreeWidgetItem *item = itemAt(pos);
    // A press on the expand sign opens or closes the branch without choosing.
    const bool onNode = item && visualItemRect(item).contains(pos);
    QTreeWidget::mousePressEvent(event);
    if (onNode && item == currentItem() && item->isSelected())
        emit nodeClick(item);
}

void AdminTreeView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        QTreeWidget::mouseReleaseEvent(event);
    emit treeMouseUp(event->button());
}

void AdminTreeView::mouseMoveEvent(QMouseEvent *event)
{
    // Dragging with a button held does not carry the selection along: only
    // a click chooses a node.
    if (event->buttons() == Qt::NoButton)
        QTreeWidget::mouseMoveEvent(event);
    emit treeMouseMove();
}

void AdminTreeView::keyPressEvent(QKeyEvent *event)
{
    QTreeWidgetItem *before = currentItem();
    QTreeWidget::keyPressEvent(event);
    QTreeWidgetItem *after = currentItem();
    if (after && after != before && after->isSelected())
        emit nodeClick(after);
}
