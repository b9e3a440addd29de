#pragma once

#include <QByteArray>

// The names of the platform's path functions with their path texts, and the name of the prepare
// call, as one JSON object: what a client needs to know to address anything. The same for the whole
// run.
namespace PathNames {
const QByteArray& json();
}
