#pragma once

#include "OrvoHash.h"
#include "TrString.h"

// A tagged value: at most one entry of a known tag. The empty value reads 0, false and the empty
// text.
class ORVO_API_EXPORT OrvoValue : public OrvoHash {
public:
    using OrvoHash::OrvoHash;

    static QString Bool_() { return QStringLiteral("bool"); }
    static QString I32_() { return QStringLiteral("i32"); }
    static QString I64_() { return QStringLiteral("i64"); }
    static QString Double_() { return QStringLiteral("double"); }
    static QString String_() { return QStringLiteral("string"); }

    bool containsBool_() const { return contains(Bool_()); }
    bool containsI32_() const { return contains(I32_()); }
    bool containsI64_() const { return contains(I64_()); }
    bool containsDouble_() const { return contains(Double_()); }
    bool containsString_() const { return contains(String_()); }

    bool bool_() const { return stored(Bool_()).toBool(); }
    int i32() const { return toInt(stored(I32_()), 0); }
    qint64 i64() const { return toInt64(stored(I64_()), 0); }
    double double_() const { return stored(Double_()).toDouble(); }
    QString string() const { return stored(String_()).toString(); }

    void setBool_(bool value) { setOnly(Bool_(), value); }
    void setI32_(int value) { setOnly(I32_(), value); }
    void setI64_(qint64 value) { setOnly(I64_(), value); }
    void setDouble_(double value) { setOnly(Double_(), value); }
    void setString_(const QString& value) { setOnly(String_(), value); }

    static OrvoValue fromBool(bool value);
    static OrvoValue fromI32(int value);
    static OrvoValue fromI64(qint64 value);
    static OrvoValue fromString(const QString& value);

    // The key of the entry held, empty when there is none.
    QString tag() const;

private:
    void setOnly(const QString& tag, const QVariant& value);
};
Q_DECLARE_METATYPE(OrvoValue)
