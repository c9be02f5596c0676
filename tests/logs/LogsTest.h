#pragma once

#include "users/UsersTest.h"

#include <QStringList>

namespace LogsTest {

// A log row: Name, Status, DueBack, Comments, LastModified, NetworkLogonID,
// ComputerName; "<null>" for a Null.
using LogRow = QStringList;

// The board with its structure up to date and these rows in its log.
void seedLog(Database &db, const QList<LogRow> &rows);
// `count` rows of `names` in turn, LastModified one second apart from
// 2006-07-01 00:00:00 on; the newest is the last.
QList<LogRow> generatedRows(int count, const QStringList &names = {"Ann", "Bob"});

}  // namespace LogsTest
