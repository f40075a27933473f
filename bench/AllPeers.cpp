#include <stdexcept>

#include "bench/Peer.h"

namespace bench {

std::unique_ptr<Peer> MakePeer(const std::string& name) {
    if (name == "jet4") return MakeJetPeer(false);
    if (name == "jet3") return MakeJetPeer(true);
    if (name == "sqlite") return MakeSqlitePeer();
    if (name == "mdb") return MakeMdbPeer();
    throw std::runtime_error("no peer of this name");
}

std::vector<std::string> PeerNames() {
    return {"jet4", "jet3", "sqlite", "mdb"};
}

}  // namespace bench
