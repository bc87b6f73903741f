// The parser's MPLS decode: a walk of at most four labels to the one with
// the bottom-of-stack bit, within the frame.
#include "mpls.h"
#include "parser_l3.h"

namespace model {

namespace {

using m = baf_hdr_ing_st::mpls;

constexpr std::uint32_t WALK_LABELS = 4;
constexpr std::uint32_t LABEL_BYTES = 4;
constexpr std::uint32_t LAST_RESERVED_LABEL = 15;
constexpr std::uint32_t LABEL_GAL = 13;

const mpls_hdr_st& label_at(std::span<const std::uint8_t> l3, std::uint32_t i) {
  return *reinterpret_cast<const mpls_hdr_st*>(l3.data() + i * LABEL_BYTES);
}

struct stack_walk {
  std::uint32_t walked = 0;  // labels read
  std::uint32_t count = 0;   // labels to the bottom of the stack; 0: not met
  std::uint32_t eli_at = 0;  // place of an entropy label indicator below the top; 0: none
};

stack_walk walk(std::span<const std::uint8_t> l3) {
  stack_walk w;
  while (w.walked < WALK_LABELS && (w.walked + 1) * LABEL_BYTES <= l3.size() && w.count == 0) {
    const mpls_hdr_st& label = label_at(l3, w.walked);
    if (w.walked > 0 && w.eli_at == 0 && mpls_hdr_st::label::get(label) == MPLS_LABEL_ELI) w.eli_at = w.walked;
    ++w.walked;
    if (mpls_hdr_st::eos::get(label)) w.count = w.walked;
  }
  return w;
}

}  // namespace

l3_verdict decode_mpls(std::span<const std::uint8_t> l3, bool multicast_type, baf_hdr_ing_st& baf) {
  l3_verdict out;
  out.multicast = multicast_type;
  m::mpls_is_multicast::set(baf, multicast_type);
  if (l3.size() < LABEL_BYTES) return out;
  const stack_walk w = walk(l3);
  const mpls_hdr_st& top = label_at(l3, 0);
  const bool deeper_than_walk = w.count == 0 && w.walked == WALK_LABELS;
  m::mpls_lt_5_labels::set(baf, w.count != 0);
  m::mpls_num_labels::set(baf, w.count);
  m::mpls_gt_1_label::set(baf, w.count >= 2 || deeper_than_walk);
  m::found_entropy_label::set(baf, w.eli_at != 0);
  m::entropy_label_offset::set(baf, w.eli_at);
  m::mpls_inner_label_not_gal::set(baf,
                                   w.count != 0 && mpls_hdr_st::label::get(label_at(l3, w.count - 1)) != LABEL_GAL);
  m::mpls_outer_label_gt_15::set(baf, mpls_hdr_st::label::get(top) > LAST_RESERVED_LABEL);
  m::mpls_ttl_gt_1::set(baf, mpls_hdr_st::ttl::get(top) > 1);
  out.sane = (w.count != 0 || deeper_than_walk) && mpls_hdr_st::ttl::get(top) > 1;
  return out;
}

}  // namespace model
