#include "platform/linux/screen/windows/SwayWorkArea.h"

#include "platform/files/FileDescriptor.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/WindowNames.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

namespace
{

constexpr std::array<char, 6> magic = {'i', '3', '-', 'i', 'p', 'c'};
constexpr std::uint32_t getWorkspaces = 1;
constexpr std::uint32_t maxAnswer = 1'000'000; // Of the hundred workspaces that nobody has it would be a tenth.

/// Before each message, in the host's byte order.
struct [[gnu::packed]] Header {
    std::array<char, magic.size()> start = magic;
    std::uint32_t size = 0;
    std::uint32_t type = getWorkspaces;
};

FileDescriptor connectTo(const QByteArray &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) {
        return FileDescriptor();
    }
    std::ranges::copy(path, address.sun_path);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    constexpr timeval timeout{.tv_sec = 0, .tv_usec = 100'000};
    for (const int direction : {SO_RCVTIMEO, SO_SNDTIMEO}) {
        ::setsockopt(socket.number(), SOL_SOCKET, direction, &timeout, sizeof timeout);
    }
    const bool isConnected =
        ::connect(socket.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    return isConnected ? std::move(socket) : FileDescriptor();
}

/// Whether that many bytes have come.
bool receive(const FileDescriptor &socket, std::span<char> bytes)
{
    return ::recv(socket.number(), bytes.data(), bytes.size(), MSG_WAITALL) == static_cast<ssize_t>(bytes.size());
}

QRect rectOf(const QJsonObject &object)
{
    const auto number = [&](const char *key) { return object.value(QLatin1String(key)).toInt(); };
    return {number("x"), number("y"), number("width"), number("height")};
}

} // namespace

std::optional<QRect> SwayWorkArea::workAreaOf(const QByteArray &workspaces, const QRect &monitor)
{
    const QJsonArray all = QJsonDocument::fromJson(workspaces).array();
    for (const auto &each : all) {
        const QJsonObject workspace = each.toObject();
        const QRect place = rectOf(workspace.value(QLatin1String("rect")).toObject());
        if (workspace.value(QLatin1String("visible")).toBool() && !place.isEmpty() && monitor.contains(place)) {
            return place;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> SwayWorkArea::askForWorkspaces(const QByteArray &socket)
{
    const FileDescriptor sway = connectTo(socket);
    Header header;
    if (!sway || ::send(sway.number(), &header, sizeof header, MSG_NOSIGNAL) != sizeof header ||
        !receive(sway, {reinterpret_cast<char *>(&header), sizeof header}) || header.start != magic ||
        header.type != getWorkspaces || header.size > maxAnswer) {
        return std::nullopt;
    }
    QByteArray answer(static_cast<qsizetype>(header.size), '\0');
    return receive(sway, {answer.data(), header.size}) ? std::optional(answer) : std::nullopt;
}

std::optional<QRect> SwayWorkArea::workAreaOn(const QRect &monitor)
{
    const QByteArray socket = qgetenv("SWAYSOCK");
    if (socket.isEmpty() || !isWlrootsTheWindowManager()) {
        return std::nullopt;
    }
    const std::optional<QByteArray> workspaces = askForWorkspaces(socket);
    return workspaces ? workAreaOf(*workspaces, monitor) : std::nullopt;
}
