#pragma once

#include <QHash>
#include <QIcon>
#include <QPixmap>
#include <QString>

// The console's image lists, by key.
namespace Images {

// Small images of the list rows: "1Red" .. "6Magenta", "Users", "Groups",
// "DueBack", "Servers", "Warning", "Messages", "Columns".
const QHash<QString, QPixmap> &ImageListSmall();
// Node images of the tree: "Root", "Columns", "DueBack", "Groups",
// "Messages", "Servers", "AutoSync", "Status", "Users", "Import".
const QHash<QString, QPixmap> &TBMainSm();
// The toolbar's three states, by button key.
const QHash<QString, QPixmap> &imglstToolBarCold();
const QHash<QString, QPixmap> &imglstToolbarHot();
const QHash<QString, QPixmap> &imglstToolbarDisabled();
// A button's icon with its cold, hot and disabled images.
QIcon toolbarIcon(const QString &key);

QPixmap aboutPicture();

}  // namespace Images
