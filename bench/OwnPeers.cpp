#include <stdexcept>

#include "bench/Peer.h"

namespace bench {

std::unique_ptr<Peer> MakePeer(const std::string& name) {
    if (name == "jet4") return MakeJetPeer(false);
    if (name == "jet3") return MakeJetPeer(true);
    throw std::runtime_error("no peer of this name");
}

std::vector<std::string> PeerNames() {
    return {"jet4", "jet3"};
}

}  // namespace bench
