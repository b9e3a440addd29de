#include "OrvoRoles.h"

const QStringList& OrvoRoles::defaultNames() {
    static const QStringList names = {
        Title(), Path(),       Type(), ContainerType(), ContainerPlayable(),
        Value(), Modifiable(), Id(),   Context(),       MediaData()};
    return names;
}

QVariantList CMGlobal::itemRolesToList(const QStringList& names, const OrvoRoles& roles) {
    QVariantList values;
    values.reserve(names.size());
    for (const QString& name : names)
        values.append(roles.attribute(name));
    return values;
}
