#pragma once

#include <QString>

class QWidget;

// The folder browser: a folder out, or an empty text when the user cancelled.
QString BrowseForFolder(QWidget *parent, const QString &prompt = QStringLiteral("Please select a folder:"),
                        const QString &startFolder = QString());
