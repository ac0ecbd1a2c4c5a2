#include "platform/images/ImageFile.h"

#include "platform/images/TiffReader.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPixmap>

namespace
{

constexpr qint64 maxBytes = 16 << 20;

QList<QImage> readByQt(const QString &path)
{
    // By the name's ending alone: to look at the contents, Qt would load each of its plugins (1.3 MB of private
    // memory).
    QImageReader reader(path, QFileInfo(path).suffix().toLatin1());
    reader.setAutoDetectImageFormat(false);
    QList<QImage> pictures;
    for (QImage picture = reader.read(); !picture.isNull(); picture = reader.read()) {
        pictures.append(picture);
        if (!reader.jumpToNextImage()) {
            break;
        }
    }
    return pictures;
}

} // namespace

QIcon readImageFile(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > maxBytes) {
        return {};
    }
    const bool isTiff = QFileInfo(path).suffix().startsWith(QLatin1String("tif"), Qt::CaseInsensitive);
    const QList<QImage> pictures = isTiff ? readTiff(file.readAll()) : readByQt(path);
    QIcon icon;
    for (const QImage &picture : pictures) {
        icon.addPixmap(QPixmap::fromImage(picture));
    }
    return icon;
}
