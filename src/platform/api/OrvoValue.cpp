#include "OrvoValue.h"

namespace {
const QStringList& tags() {
    static const QStringList all = {OrvoValue::Bool_(), OrvoValue::I32_(), OrvoValue::I64_(),
                                    OrvoValue::Double_(), OrvoValue::String_()};
    return all;
}
} // namespace

QString OrvoValue::tag() const {
    for (const QString& candidate : tags()) {
        if (contains(candidate))
            return candidate;
    }
    return {};
}

void OrvoValue::setOnly(const QString& tag, const QVariant& value) {
    if (!isEmpty()) {
        for (const QString& other : tags())
            removeAttribute(other);
    }
    setAttribute(tag, value);
}

OrvoValue OrvoValue::fromBool(bool value) {
    OrvoValue result;
    result.setBool_(value);
    return result;
}

OrvoValue OrvoValue::fromI32(int value) {
    OrvoValue result;
    result.setI32_(value);
    return result;
}

OrvoValue OrvoValue::fromI64(qint64 value) {
    OrvoValue result;
    result.setI64_(value);
    return result;
}

OrvoValue OrvoValue::fromString(const QString& value) {
    OrvoValue result;
    result.setString_(value);
    return result;
}
