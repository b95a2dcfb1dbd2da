#pragma once
// The machine's name as its owner set it, on systems without scutil.
#include <QByteArray>
#include <QString>

namespace hostname {

inline constexpr const char* machineInfoPath = "/etc/machine-info";

// PRETTY_HOSTNAME out of a machine-info text (KEY=value lines with shell-style quoting, the last
// assignment winning); empty when it is not there.
QString prettyFromMachineInfo(const QByteArray& text);

// The pretty host name: from `machineInfo`, else from `hostnamectl --pretty` where that tool is
// found; empty when neither knows one.
QString prettyHostName(const QString& machineInfo = machineInfoPath);

// The name to show for this machine: the pretty name, else the plain host name, else empty.
QString localizedName(const QString& machineInfo = machineInfoPath);

} // namespace hostname
