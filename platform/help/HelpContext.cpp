// Which topic belongs to a form.
#include <QVariant>
#include <QWidget>

#include "platform/help/HelpViewer.h"

namespace platform {
namespace {

constexpr const char* kProperty = "HelpContextID";

}  // namespace

void SetHelpContextId(QWidget& form, int contextId) {
    form.setProperty(kProperty, contextId);
}

int HelpContextId(const QWidget* widget) {
    for (; widget != nullptr; widget = widget->parentWidget()) {
        const QVariant id = widget->property(kProperty);
        if (id.isValid()) {
            return id.toInt();
        }
    }
    return 0;
}

}  // namespace platform
