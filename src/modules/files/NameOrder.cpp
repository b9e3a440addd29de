#include "NameOrder.h"

QCollator NameOrder::collator() {
    // Named, not the environment's: the order must not change with the locale a service happens to
    // run in.
    QCollator collator{QLocale(QLocale::English)};
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

bool NameOrder::areSame(const QString& a, const QString& b) {
    return a == b || a.toCaseFolded() == b.toCaseFolded();
}
