#pragma once

#include <QIcon>
#include <QString>

/// The image in a file, as an icon with one size for each page of a .tiff (of the kind that
/// platform/images/TiffReader.h reads) or each picture of a file that Qt reads; the larger ones serve screens with
/// several pixels to the point. A null icon when the file is missing, malformed, larger than 16 MiB or of another
/// format. Main thread only.
[[nodiscard]] QIcon readImageFile(const QString &path);
