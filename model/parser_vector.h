// The parser's choice of the ingress vector: the handler a line packet runs.
#pragma once

#include <cstdint>

#include "ingress_vectors.h"
#include "parser_l3.h"

namespace model {

// What the choice reads besides the receive header, whose marks, port bits,
// da_bits and l3_type are already in place.
struct frame_class {
  bool inject_port = false;
  bool placed = false;  // the frame is whole and its interface known
  std::uint16_t ethertype = 0;
  l3_verdict l3;
  bool to_group_mac = false;  // the destination MAC is the one of l3's group
};

// A frame the parser cannot place gets VECTOR_UNPLACED: no handler has it,
// so the program drops it as an unknown vector.
struct vector_choice {
  bool valid = true;  // false: the classification found nothing (rt_result_valid clear)
  std::uint32_t vector = VECTOR_UNPLACED;
};

vector_choice choose_vector(const baf_hdr_ing_st& baf, const frame_class& f);

}  // namespace model
