#pragma once

namespace quorvale::model {

class PacketParsingHelper {
public:
    PacketParsingHelper() = default;
    PacketParsingHelper(const PacketParsingHelper&) = delete;
    PacketParsingHelper& operator=(const PacketParsingHelper&) = delete;
};

} // namespace quorvale::model
