// The library's entrance.
#include <QObject>

#include "platform/help/HelpLibrary.h"
#include "platform/helpwindow/HelpWindow.h"

namespace platform {

class HelpPlugin : public QObject, public HelpLibrary {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "TARNPrep.HelpLibrary")
    Q_INTERFACES(platform::HelpLibrary)

public:
    std::unique_ptr<HelpFrame> Open(const QString& helpFile, Trap trap) override {
        return HelpWindow::Open(helpFile, trap);
    }
};

}  // namespace platform

#include "HelpPlugin.moc"
