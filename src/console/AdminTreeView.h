#pragma once

#include <QTreeWidget>

// TreeViewMain: the ten nodes of item kinds. A node click is a selection made
// by the user, with the mouse or the keyboard; a selection made by the code
// is none. A right press does not move the selection; it only ends in a
// mouse-up, which the console turns into the Edit pop-up.
class AdminTreeView : public QTreeWidget {
    Q_OBJECT

public:
    explicit AdminTreeView(QWidget *parent = nullptr);

    QTreeWidgetItem *node(const QString &key) const;
    QString key(const QTreeWidgetItem *item) const;
    QTreeWidgetItem *addNode(const QString &key, const QString &text, const QString &imageKey,
                             QTreeWidgetItem *parent);
    // The selected node, or nullptr.
    QTreeWidgetItem *selectedNode() const;
    // Selects a node from the code: no node click follows.
    void selectNode(QTreeWidgetItem *item);

signals:
    void nodeClick(QTreeWidgetItem *item);
    void treeMouseUp(Qt::MouseButton button);
    void treeMouseMove();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
};
