#include "rollup/gzip.h"

#include <zlib.h>

#include <array>
#include <new>

namespace rollup {

namespace {

// Most of what a higher level gains takes several times as long.
constexpr int kLevel = 3;
constexpr int kGzipWindow = 15 + 16;  // the largest, and gzip's heading
constexpr int kMemoryLevel = 8;
constexpr std::size_t kPart = std::size_t{1} << 16;

}  // namespace

class Gzip::State {
public:
    State() {
        if (deflateInit2(&stream, kLevel, Z_DEFLATED, kGzipWindow, kMemoryLevel,
                         Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { deflateEnd(&stream); }

    z_stream stream{};
};

Gzip::Gzip() : state_(std::make_unique<State>()) {}

Gzip::~Gzip() = default;

void Gzip::Deflate(std::string_view text, int flush) {
    z_stream& stream = state_->stream;
    // The library does not write there.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    std::array<char, kPart> part{};
    do {
        stream.next_out = reinterpret_cast<Bytef*>(part.data());
        stream.avail_out = static_cast<uInt>(part.size());
        deflate(&stream, flush);
        compressed_.append(part.data(), part.size() - stream.avail_out);
    } while (stream.avail_out == 0);
}

void Gzip::Add(std::string_view text) {
    for (std::size_t at = 0; at < text.size(); at += kPart) {
        Deflate(text.substr(at, kPart), Z_NO_FLUSH);
    }
}

std::string Gzip::Finish() {
    Deflate({}, Z_FINISH);
    return std::move(compressed_);
}

class GzipReader::State {
public:
    explicit State(const std::filesystem::path& path) : file(gzopen(path.string().c_str(), "rb")) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (file != nullptr) {
            gzclose(file);
        }
    }
    gzFile file;
};

GzipReader::GzipReader(const std::filesystem::path& file) : state_(std::make_unique<State>(file)) {}

GzipReader::~GzipReader() = default;

int GzipReader::Refill() {
    if (state_->file == nullptr) {
        return -1;
    }
    part_.resize(kPart);
    const int got = gzread(state_->file, part_.data(), static_cast<unsigned>(kPart));
    part_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    at_ = 0;
    if (part_.empty()) {
        int error = Z_OK;
        gzerror(state_->file, &error);
        // What is not compressed would be passed through.
        isWhole_ =
            got == 0 && (error == Z_OK || error == Z_STREAM_END) && gzdirect(state_->file) == 0;
        return -1;
    }
    return static_cast<unsigned char>(part_[at_++]);
}

}  // namespace rollup
