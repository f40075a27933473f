#include "shell/Worksheets.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cstddef>

#include "worksheets/Worksheet.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/goals/frm2RMAs.h"
#include "worksheets/intro/frm1Intro.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/zones/frm4FMZs.h"

using worksheets::Worksheet;
using worksheets::WorksheetHost;

namespace Worksheets {
namespace {

template <typename Form>
std::unique_ptr<Worksheet> Make(WorksheetHost& host, QWidget* parent) {
    return std::make_unique<Form>(host, parent);
}

template <typename Form>
constexpr Line LineOf(const char* tabCaption, const char* menuCaption,
                      const char* refusalWithoutZone = nullptr) {
    return {Form::kID, tabCaption, menuCaption, refusalWithoutZone, &Make<Form>};
}

const std::array kLines{
    LineOf<frm1Intro>(QT_TRANSLATE_NOOP("Worksheets", "Introduction"),
                      QT_TRANSLATE_NOOP("Worksheets", "&Introduction")),
    LineOf<frm2RMAs>(QT_TRANSLATE_NOOP("Worksheets", "Management Goals"),
                     QT_TRANSLATE_NOOP("Worksheets", "&Management Goals")),
    LineOf<frm3SRMaster>(QT_TRANSLATE_NOOP("Worksheets", "Suppression Resources"),
                         QT_TRANSLATE_NOOP("Worksheets", "&Suppression Resources")),
    LineOf<frm4FMZs>(QT_TRANSLATE_NOOP("Worksheets", "FMZs"),
                     QT_TRANSLATE_NOOP("Worksheets", "Fire Management &Zones")),
    LineOf<frm5NVCTable>(
        QT_TRANSLATE_NOOP("Worksheets", "NVC Table"),
        QT_TRANSLATE_NOOP("Worksheets", "&NVC Table (Impacts)"),
        QT_TRANSLATE_NOOP("Worksheets", "Must have at least one FMZ to edit impacts.")),
    LineOf<frm6SuppressAcre>(
        QT_TRANSLATE_NOOP("Worksheets", "Suppression Cost / Acre"),
        QT_TRANSLATE_NOOP("Worksheets", "Suppression Cost per &Acre"),
        QT_TRANSLATE_NOOP("Worksheets",
                          "Must have at least one FMZ to edit suppression cost per acre.")),
};

}  // namespace

std::span<const Line> Lines() {
    return kLines;
}

int Count() {
    return static_cast<int>(kLines.size());
}

const Line& At(int number) {
    return kLines.at(static_cast<std::size_t>(number) - 1);
}

int NumberOf(const QString& id) {
    const auto found = std::find_if(kLines.begin(), kLines.end(), [&id](const Line& line) {
        return id == QLatin1String(line.id);
    });
    return static_cast<int>(found - kLines.begin()) + 1;
}

QString Text(const char* source) {
    return QCoreApplication::translate("Worksheets", source);
}

}  // namespace Worksheets
