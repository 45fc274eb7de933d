#pragma once

#include <QImage>
#include <QString>

#include <memory>

class FlatField;

// Blank fields kept per camera (its control-store key, CCameraControlStore::
// CameraKey) and frame size, as pictures in a folder of their own, and the
// switch that turns the correction on. A camera started at a size with a
// blank field kept for it gets its correction again while the switch is on.
class CFlatFieldStore
{
public:
    // folder: empty takes "FlatFields" in the data folder.
    explicit CFlatFieldStore(QString folder = {});

    // blank: the averaged blank field as a 24-bit picture, top row first.
    // False with a reason when it cannot be written.
    bool Save(const QString& camera, const QImage& blank, QString* error) const;
    // The blank field kept for this camera at this size; null when none.
    QImage Blank(const QString& camera, unsigned width, unsigned height) const;
    // Its correction; null when none is kept or it gives none.
    std::shared_ptr<const FlatField> Correction(const QString& camera, unsigned width, unsigned height) const;

    // Off by default.
    bool Enabled() const;
    void SetEnabled(bool on) const;

    QString Folder() const { return m_folder; }
    QString FileFor(const QString& camera, unsigned width, unsigned height) const;

private:
    QString m_folder;
};
