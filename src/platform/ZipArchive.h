#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

// The few ZIP operations exchange formats need (ImageJ's ROI sets): a whole
// archive built in memory with its entries stored, and the entries of an
// archive read back, stored or deflated. No encryption, no ZIP64.
namespace ZipArchive {

struct Entry
{
    QString name;
    QByteArray data;
};

// The bytes of an archive holding the entries, in order.
QByteArray Build(const std::vector<Entry>& entries);

// The entries of an archive, or none with a reason in `error`: not a ZIP
// archive, a damaged entry (its checksum), an unsupported method, or more
// than `limit` bytes unpacked in all.
std::optional<std::vector<Entry>> Extract(
    const QByteArray& archive, QString* error, qint64 limit = 64 * 1024 * 1024);

} // namespace ZipArchive
