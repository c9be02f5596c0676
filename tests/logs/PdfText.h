#pragma once

#include <QString>
#include <QStringList>

// A printed PDF read back with poppler's tools.
namespace PdfText {

// Text of every page, laid out as printed (pdftotext -layout); pages are
// separated by a form feed.
QString layout(const QString &pdf);
// The page count pdfinfo gives; -1 when the file is no PDF.
int pages(const QString &pdf);
// The rows of text of every page, in order, rebuilt from the position of
// each word: text in the body's fixed-pitch font stands in the character
// column its position gives, so blanks between columns count; larger text
// (a title) has its words joined by one blank. Right blanks removed.
QStringList fixedPitchRows(const QString &pdf);
// The non-empty lines of `text`, right blanks removed.
QStringList lines(const QString &text);

}  // namespace PdfText
