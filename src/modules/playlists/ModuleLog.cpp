#include "ModuleLog.h"

#include <QStringList>

log4cplus::Logger& moduleLog() {
    static log4cplus::Logger logger = log4cplus::Logger::getInstance(LOG4CPLUS_TEXT("PlayLists"));
    return logger;
}

QString joined(const QList<int>& numbers) {
    QStringList texts;
    texts.reserve(numbers.size());
    for (int number : numbers)
        texts.append(QString::number(number));
    return texts.join(QStringLiteral(", "));
}
