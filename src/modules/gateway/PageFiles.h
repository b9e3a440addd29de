#pragma once

#include <optional>

#include <QString>

#include "HttpMessages.h"

// The files of the web page, read from one folder and never from outside it. Without a folder the
// root is a short text that names the interface. Nothing here fails: what is not there is not
// found.
class PageFiles {
public:
    explicit PageFiles(const QString& folder);

    // `path` as in the request, "/" being the page itself. With the tag that the client holds
    // already the answer is 304 without a body.
    std::optional<HttpResponse> find(const QString& path, const QByteArray& heldTag) const;

private:
    QString m_folder; // canonical, empty when there is no page
};
