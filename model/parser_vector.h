// The parser's choice of the ingress vector: the handler a line packet runs.
#pragma once

#include <cstdint>

#include "parser_l3.h"

namespace model {

enum ingress_vector : std::uint32_t {
  VECTOR_IPV4_UNICAST = 0,
  VECTOR_IPV4_MULTICAST = 1,
  VECTOR_IPV6_UNICAST = 2,
  VECTOR_IPV6_MULTICAST = 3,
  VECTOR_MPLS = 4,
  VECTOR_VPWS = 5,
  VECTOR_VPLS = 6,
  VECTOR_IPV4_EXCEPTION = 7,
  VECTOR_IPV6_EXCEPTION = 8,
  VECTOR_MPLS_EXCEPTION = 9,
  VECTOR_VPWS_EXCEPTION = 10,
  VECTOR_VPLS_EXCEPTION = 11,
  VECTOR_L2_CONTROL = 12,
  VECTOR_INJECT = 13,
  // A frame the parser cannot place: too short for its Ethernet header, or
  // on no interface. No handler has it, so the program drops it as an
  // unknown vector.
  VECTOR_UNPLACED = 0xFF,
};

// What the choice reads besides the receive header, whose marks, port bits,
// da_bits and l3_type are already in place.
struct frame_class {
  bool inject_port = false;
  bool placed = false;  // the frame is whole and its interface known
  std::uint16_t ethertype = 0;
  l3_verdict l3;
  bool to_group_mac = false;  // the destination MAC is the one of l3's group
};

struct vector_choice {
  bool valid = true;  // false: the classification found nothing (rt_result_valid clear)
  std::uint32_t vector = VECTOR_UNPLACED;
};

vector_choice choose_vector(const baf_hdr_ing_st& baf, const frame_class& f);

}  // namespace model
