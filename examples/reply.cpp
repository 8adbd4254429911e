// Reads the answer of a server: the devices it knows, in the order of their addresses.

#include <pylon/data/compareipaddresses.h>
#include <pylon/data/xmlresponse.h>

#include <QtCore/QMap>

#include <cstdio>

int main() {
    const QByteArray bytes = R"(<s:Response xmlns:s="urn:recorder">
  <Device Id="7"><Name>Gate</Name><Address>10.0.0.10:8601</Address></Device>
  <Device Id="8"><Name>Yard</Name><Address>10.0.0.9</Address><Muted>false</Muted></Device>
  <Device Id="9"><Name>Hall</Name><Address>[fe80::1]:8601</Address></Device>
</s:Response>)";

    const pylon::XmlResponse reply(bytes, "/Response");
    if (!reply.isValid())
        qFatal("line %d: %s", reply.error().line, qPrintable(reply.error().message));
    QMap<QString, QString> names;
    for (const pylon::XmlResponseNode& device : reply.getAll("/Device"))
        names[reply.getText(device, "/Device/Address")] = reply.getText(device, "/Device/Name");

    QStringList addresses = names.keys();
    pylon::CompareIpAddresses::sort(addresses);
    for (const QString& address : addresses)
        std::printf("%s  %s\n", qPrintable(names[address]), qPrintable(address));
}
