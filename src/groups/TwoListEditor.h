#pragma once

#include <QAbstractListModel>
#include <QIcon>
#include <QObject>
#include <QStringList>

class QListView;

// The names of one side of a two-list editor, each shown with the same
// small icon. Kept as one plain list, so that ten thousand names fill and
// move without a pause.
class NameListModel : public QAbstractListModel {
    Q_OBJECT

public:
    NameListModel(const QIcon &icon, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    void setNames(const QStringList &names);
    const QStringList &names() const { return m_names; }
    void append(const QString &name);
    QString take(int row);

private:
    QIcon m_icon;
    QStringList m_names;
};

// Two lists of which a click on an item moves it to the end of the other
// list; a click in an empty list, or below its items, does nothing. Space or
// Enter moves the current item, for the keyboard. Nothing is written
// anywhere: the window reads the lists at OK.
class TwoListEditor : public QObject {
    Q_OBJECT

public:
    TwoListEditor(QListView *left, QListView *right, const QIcon &icon, QObject *parent);

    NameListModel *left() const { return m_left; }
    NameListModel *right() const { return m_right; }

    // Moves the item at `row` of one list to the end of the other.
    void moveFromLeft(int row);
    void moveFromRight(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void move(NameListModel *from, NameListModel *to, int row);

    QListView *m_leftView;
    QListView *m_rightView;
    NameListModel *m_left;
    NameListModel *m_right;
};
