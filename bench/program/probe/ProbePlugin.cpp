// Hands the probe to Qt, which loads this plug-in into the unchanged program.
#include <QGenericPlugin>

#include "Probe.h"

namespace probe {

class ProbePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "probe.json")

public:
    QObject* create(const QString&, const QString&) override {
        return new Probe(qEnvironmentVariable("TARN_PROBE_SCENARIO"),
                         qEnvironmentVariable("TARN_PROBE_RESULTS"));
    }
};

}  // namespace probe

#include "ProbePlugin.moc"
