#pragma once

#include <QObject>

/// Objects that are attached to another one under a key, without owning them. Main thread only.

/// Attaches `object` to `holder`; the holder keeps no reference. Null removes the attachment.
void setAssociatedObject(QObject &holder, const char *key, QObject *object);

/// Null when nothing is attached under the key, or when that has been destroyed since.
[[nodiscard]] QObject *associatedObject(const QObject &holder, const char *key);

/// Removes every attachment.
void removeAssociatedObjects(QObject &holder);
