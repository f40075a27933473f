// jetsql: SQL over Jet files from the command line.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/error.h"
#include "jetsql/command/Rows.h"
#include "jetsql/command/Session.h"

namespace {

constexpr int kDone = 0;
constexpr int kQueryFailed = 1;
constexpr int kUnreadable = 2;

constexpr std::string_view kHelp =
    R"help(Usage: jetsql [--csv | --json] FILE... "SELECT ..."
       jetsql [--csv | --json] FILE... .tables | .schema

Asks Jet data files in the SQL of SQLite. Files are only read, never changed.

With one file its tables have their own names. With several, each file is a schema named by its
title: jetsql a.mdb b.mdb "SELECT * FROM a.Zones JOIN b.Zones USING (Key)".

  --csv     comma-separated values with a heading; null is nothing, an empty text ""
  --json    an array with an object for each row
  .tables   the tables, with the number of their records
  .schema   their columns, types and keys
  --help    this text
  --version the version

Exit status: 0 done, 1 an error in the query, 2 a file that cannot be read.
)help";

struct Request {
    jetsql::Style style = jetsql::Style::kTable;
    std::vector<std::string> files;
    std::string query;
};

// Nothing when the words are not those of the usage.
std::optional<Request> Parse(std::span<char*> words) {
    Request request;
    std::size_t at = 0;
    for (; at < words.size() && std::string_view(words[at]).starts_with("--"); ++at) {
        const std::string_view option = words[at];
        if (option == "--csv") {
            request.style = jetsql::Style::kCsv;
        } else if (option == "--json") {
            request.style = jetsql::Style::kJson;
        } else if (option == "--") {
            ++at;
            break;
        } else {
            std::cerr << "jetsql: there is no option " << option << '\n';
            return std::nullopt;
        }
    }
    request.files.assign(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
    if (request.files.size() < 2) {
        return std::nullopt;
    }
    request.query = request.files.back();
    request.files.pop_back();
    return request;
}

int Answer(const Request& request) {
    jetsql::Session session;
    for (const std::string& file : request.files) {
        try {
            session.AddFile(file, request.files.size() > 1);
        } catch (const jet::Error& error) {
            std::cerr << "jetsql: " << file << ": " << error.what() << '\n';
            return kUnreadable;
        }
    }
    try {
        const auto printer = jetsql::MakePrinter(request.style, std::cout);
        session.Run(request.query, *printer);
    } catch (const jetsql::QueryError& error) {
        std::cout.flush();
        std::cerr << "jetsql: " << error.what() << '\n';
        return error.IsOfFile() ? kUnreadable : kQueryFailed;
    }
    std::cout.flush();
    return std::cout ? kDone : kQueryFailed;
}

}  // namespace

int main(int count, char** words) {
    const std::span<char*> arguments(words + 1, static_cast<std::size_t>(count - 1));
    for (const std::string_view word : arguments) {
        if (word == "--help" || word == "-h") {
            std::cout << kHelp;
            return kDone;
        }
        if (word == "--version") {
            std::cout << "jetsql " TARN_VERSION "\n";
            return kDone;
        }
    }
    const std::optional<Request> request = Parse(arguments);
    if (!request) {
        std::cerr << kHelp;
        return kUnreadable;
    }
    try {
        return Answer(*request);
    } catch (const std::exception& error) {
        std::cerr << "jetsql: " << error.what() << '\n';
        return kQueryFailed;
    }
}
