#pragma once

#include <QString>

class ObjectDataBase;

/// The application identity that a project is worked on and saved under. A project names the edition that saved it, and
/// an edition opens no project of another one whose protocols it does not speak; so a project takes the least edition
/// that speaks all of its lines, and opens there.
namespace Identity {

/// The edition that opens any project.
QString widest();
void takeWidest();
/// The least edition for the lines of a project: that for CANopen, that for J1939, that for all protocols; for a file
/// with the ending ".ncxe" that for EnergyBus.
QString leastFor(ObjectDataBase &store, const QString &path);
/// True if some line of a project has a type.
bool hasTypes(ObjectDataBase &store);
/// Takes an edition's name for this process.
void take(const QString &application);

} // namespace Identity
