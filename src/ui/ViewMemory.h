#pragma once

#include <QObject>
#include <QVariantHash>
#include <QtQml/qqmlregistration.h>

namespace murmeli {

/// What a view that is let go leaves to the one that comes after it: its place in a list, what stands in a
/// field. Belongs to the model of what the view shows. Main thread only.
class ViewMemory final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a model")

public:
    explicit ViewMemory(QObject* parent) : QObject(parent) {}

    Q_INVOKABLE QVariant kept(const QString& key, const QVariant& otherwise) const
    {
        return m_kept.value(key, otherwise);
    }
    Q_INVOKABLE void keep(const QString& key, const QVariant& value) { m_kept.insert(key, value); }

private:
    QVariantHash m_kept;
};

} // namespace murmeli
