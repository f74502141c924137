#include "tests/screens/StateJSON.h"

#include <QAbstractListModel>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QUrl>

namespace quillbook::test {
namespace {

QJsonValue jsonOf(const QVariant& value);

/// A picture of an album by the name of its file alone: the folder is another one each time.
QString addressOf(const QUrl& url) {
    const QString scheme = QStringLiteral("image://album/");
    if (!url.toString().startsWith(scheme)) return url.toString();
    const QByteArray path = QByteArray::fromHex(url.toString().mid(scheme.size()).toLatin1());
    return scheme + QString::fromUtf8(path.mid(path.lastIndexOf('/') + 1));
}

QJsonObject rowOf(const QAbstractListModel& model, int row) {
    QJsonObject object;
    const auto names = model.roleNames();
    for (auto role = names.begin(); role != names.end(); ++role)
        object[QString::fromLatin1(role.value())] = jsonOf(model.data(model.index(row), role.key()));
    return object;
}

QJsonArray rowsOf(const QAbstractListModel& model) {
    QJsonArray rows;
    for (int row = 0; row < model.rowCount(); ++row)
        rows.append(rowOf(model, row));
    return rows;
}

QJsonObject gadgetOf(const QMetaObject& meta, const void* gadget) {
    QJsonObject object;
    for (int each = meta.propertyOffset(); each < meta.propertyCount(); ++each) {
        const QMetaProperty property = meta.property(each);
        object[QString::fromLatin1(property.name())] = jsonOf(property.readOnGadget(gadget));
    }
    return object;
}

QJsonValue jsonOf(const QVariant& value) {
    if (const auto* model = qobject_cast<const QAbstractListModel*>(value.value<QObject*>()))
        return rowsOf(*model);
    if (value.canConvert<QVariantList>() && value.typeId() != QMetaType::QString) {
        QJsonArray items;
        for (const QVariant& item : value.toList())
            items.append(jsonOf(item));
        return items;
    }
    const QMetaType type = value.metaType();
    if (type.metaObject() != nullptr && type.flags().testFlag(QMetaType::IsGadget))
        return gadgetOf(*type.metaObject(), value.constData());
    if (value.typeId() == QMetaType::QUrl) return addressOf(value.toUrl());
    return QJsonValue::fromVariant(value);
}

QJsonValue enumeratorOf(const QMetaProperty& property, const QObject& object) {
    return QString::fromLatin1(property.enumerator().valueToKey(property.read(&object).toInt()));
}

} // namespace

std::string stateJSON(const QObject& adapter) {
    QJsonObject object;
    const QMetaObject& meta = *adapter.metaObject();
    for (int each = meta.propertyOffset(); each < meta.propertyCount(); ++each) {
        const QMetaProperty property = meta.property(each);
        object[QString::fromLatin1(property.name())] =
            property.isEnumType() ? enumeratorOf(property, adapter) : jsonOf(property.read(&adapter));
    }
    return QJsonDocument(object).toJson().toStdString();
}

} // namespace quillbook::test
