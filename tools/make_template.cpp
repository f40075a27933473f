// Makes the template of new data files: make_template DATA-FOLDER FCD.new
#include <filesystem>
#include <iostream>

#include "season/schema.h"
#include "tools/TableText.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: make_template DATA-FOLDER FILE\n";
        return 2;
    }
    const std::filesystem::path data = argv[1];
    const std::filesystem::path target = argv[2];
    return tools::RunTool([&] {
        tools::MakeFile(target, [&](jet::Database& database) {
            for (const jet::TableSchema& table : season::Tables()) {
                database.CreateTable(table);
            }
            tools::AddRows(database, "Properties",
                           tools::ReadTable(data / "template_properties.tsv"));
            tools::AddRows(database, "NVCResources", tools::ReadTable(data / "nvc_resources.tsv"));
        });
    });
}
