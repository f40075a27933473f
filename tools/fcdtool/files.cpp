#include "tools/fcdtool/files.h"

#include "season/data_file.h"

namespace fcdtool {

std::filesystem::path PathOf(const std::string& word) {
    return std::filesystem::path(word);
}

season::Season ReadFile(const std::string& file) {
    try {
        return season::Read(PathOf(file));
    } catch (const season::Refused& refused) {
        throw season::Refused(file + ": " + refused.what());
    }
}

std::size_t CountRows(const season::Season& season) {
    std::size_t rows = season.properties.size() + season.goals.size() + season.resources.size() +
                       season.nvcResources.size() + season.zones.size() + season.strayCosts.size() +
                       season.strayNvc.size();
    for (const season::Zone& zone : season.zones) {
        rows += zone.classes.size();
        for (const season::Location& location : zone.locations) {
            rows += location.rows.size();
        }
    }
    return rows;
}

}  // namespace fcdtool
