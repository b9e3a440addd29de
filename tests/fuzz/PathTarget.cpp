#include "CMPath.h"
#include "FuzzTarget.h"

namespace {

void checkPath(const QString& text) {
    const CMPath path(text);
    if (path.isEmpty()) {
        Fuzz::require(path.toString().isEmpty() && path.splitBase().isEmpty(),
                      "an empty path has a text");
        return;
    }
    // Half a surrogate becomes a replacement character on the first way, so the second one counts.
    const CMPath settled(path.toString());
    const CMPath again(settled.toString());
    Fuzz::require(again == settled, "a path does not come back from its text: " + text);
    Fuzz::require(again.toString() == settled.toString(), "two texts of one path: " + text);
    Fuzz::require(qHash(again) == qHash(settled), "two hashes of one path: " + text);
    Fuzz::require(settled.base() == CMPath(settled.base()).toString(), "a base is no path");
    Fuzz::require(path.startsWith(CMPath::fromPrefix(path.prefix())), "not below its own prefix");
    Fuzz::require(path.startsWith(path) && (path + "x").startsWith(path) &&
                      !path.startsWith(path + "x"),
                  "components are not compared whole: " + text);
    Fuzz::require(path.splitBase().size() <= text.size() && path.params().size() <= text.size(),
                  "more parts than characters");
    Fuzz::require(path.toString().size() <= 9 * text.size() + 9, "a text that grows: " + text);

    CMPath carrier(QStringLiteral("a:b"));
    carrier.addParam(QStringLiteral("path"), settled.toString());
    Fuzz::require(CMPath(carrier.toString()).param(QStringLiteral("path")) == settled.toString(),
                  "a path inside a parameter does not come back: " + text);
}

} // namespace

// The text of a path: as UTF-8, as addresses bring it, and as any 16-bit units, as JSON may.
void Fuzz::path(const QByteArray& input) {
    checkPath(QString::fromUtf8(input));
    QString units;
    for (int i = 0; i + 1 < input.size(); i += 2)
        units.append(QChar(uchar(input.at(i)), uchar(input.at(i + 1))));
    checkPath("a:" + units);
}
