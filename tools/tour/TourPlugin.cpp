// Hands the player to Qt, which loads this plug-in before the program's own code runs.
#include <QGenericPlugin>
#include <QTimer>

#include "Player.h"

namespace tour {

class TourPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "tarntour.json")

public:
    QObject* create(const QString&, const QString&) override {
        auto* player = new Player(qEnvironmentVariable("TARN_TOUR_SCRIPT"),
                                  qEnvironmentVariable("TARN_TOUR_PICTURES"));
        QTimer::singleShot(0, player, &Player::Start);
        return player;
    }
};

}  // namespace tour

#include "TourPlugin.moc"
