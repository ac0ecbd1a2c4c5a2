#pragma once

#include <QObject>

/// Objects that are attached to another one under a key, without owning them. Main thread only.

/// Attaches `object` to `holder`; the holder keeps no reference. Null takes the attachment away.
void setAssociatedObject(QObject &holder, const char *key, QObject *object);

/// Null when nothing is attached under the key, or when that has been destroyed since.
[[nodiscard]] QObject *associatedObject(const QObject &holder, const char *key);

/// Takes every attachment away.
void removeAssociatedObjects(QObject &holder);
