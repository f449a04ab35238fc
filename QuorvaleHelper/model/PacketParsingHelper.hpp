#pragma once

namespace quorvale::model {

class PacketParsingHelper {};

} // namespace quorvale::model
