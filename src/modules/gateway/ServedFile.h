#pragma once

#include <optional>

#include <QString>

#include "HttpMessages.h"

// One file of one folder as an answer; never a file from outside it, whatever the names say. It is
// as large as when it was opened, and read while it is sent. Nothing here fails: what is not there
// is not found.
namespace ServedFile {

// The type that the name's end stands for, application/octet-stream for one that is not known.
QByteArray mediaType(const QString& fileName);

// `folder` is canonical, `file` need not be. With the tag that the client holds already the answer
// is 304 without a body. Nothing for what is no file, is outside the folder or above `maxBytes`.
std::optional<HttpResponse> answer(const QString& folder, const QString& file, qint64 maxBytes,
                                   const QByteArray& cacheControl, const QByteArray& heldTag);

} // namespace ServedFile
