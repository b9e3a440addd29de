#pragma once

#include <QString>
#include <QStringList>

// The text form of the device's paths: prefix:component/component?name=value, everything unusual
// percent-encoded.
namespace PathText {

// Whether the text looks like a path of the device: a module's prefix and a colon.
bool isPath(const QString& text);
QString append(const QString& path, const QStringList& components);
QStringList components(const QString& path);
QString parameter(const QString& path, const QString& name);
// Parameters aside.
bool isSamePlace(const QString& a, const QString& b);
// Whole components, parameters aside: a/1 is at or below a, and no start of a/10.
bool isAtOrBelow(const QString& path, const QString& start);

} // namespace PathText
