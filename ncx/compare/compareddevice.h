#pragma once

#include "ncx/compare/facts.h"
#include "ncx/device/devicemodel.h"
#include "ncx/project/openedproject.h"

#include <map>
#include <memory>

/// A side of a comparison: a project, or the device that an EDS or DCF describes.
class ComparedDevice
{
public:
    /// False, with the reason, for what cannot be read.
    bool open(const QString &path);
    /// Opens two devices; projects are read side by side, on two cores. False, with their reasons, if not both could be
    /// read.
    static bool openBoth(ComparedDevice &first, const QString &firstPath, ComparedDevice &second,
                         const QString &secondPath);
    /// Takes a project that is open, which outlives this.
    void take(const OpenedProject &project) { store_ = project.sharedStore(); }
    /// A sentence part, without the path and without a full stop.
    const QString &reason() const { return reason_; }
    /// True if not all of it could be read.
    bool isDamaged() const;
    /// What is told of that.
    static QString damage();

    bool isDescription() const { return isDescription_; }
    static bool isDescriptionPath(const QString &path);
    ObjectDataBase &store() const { return *store_; }
    QList<quint8> lines() const;
    /// The line that a description can be held against: the first that speaks CANopen.
    std::optional<quint8> canOpenLine() const;
    DeviceLine &line(quint8 number);

private:
    bool openDescription(const QString &path);
    bool openProject(const QString &path, OpenedProject::Purpose purpose);
    bool readBesideOthers(const QString &path);

    std::unique_ptr<OpenedProject> project_;
    std::shared_ptr<ObjectDataBase> store_;
    std::map<quint8, std::unique_ptr<DeviceLine>> lines_;
    QString reason_;
    bool isDescription_ = false;
};
