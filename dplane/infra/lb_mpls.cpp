// Load-balance hash of MPLS packets.
#include "dplane/infra/load_balance.h"
#include "global_config.h"
#include "npu/zephra/pkt_rx.h"

namespace {

using label_t = mpls_hdr_st;

// Labels the parser counts; 0 stands for more than this.
constexpr std::uint32_t PARSER_MAX_LABELS = 4;
// The scan for an entropy label indicator looks at labels 0 to 6.
constexpr std::uint32_t ELI_SCAN_LABELS = 7;
constexpr std::uint32_t ELI_FIRST_PLACE = 1;
constexpr std::uint32_t ELI_LAST_PLACE = 6;
// A stack the parser could not count is counted on from five labels, to nine at most.
constexpr std::uint32_t COUNT_FROM = PARSER_MAX_LABELS + 1;
constexpr std::uint32_t COUNT_TO = 9;
// The payload is looked at under stacks of up to eight labels.
constexpr std::uint32_t PAYLOAD_MAX_LABELS = 8;
// The label hash: label * 0x402001 = label + (label << 13) + (label << 22).
constexpr std::uint32_t LABEL_MULTIPLIER = 0x402001;
constexpr std::uint32_t MULTILABEL_SHIFT = 12;
constexpr std::uint32_t MULTILABEL_LOW_MASK = 0xFFF;
constexpr std::uint32_t NO_ELI = ~0u;

std::uint32_t label_of(const label_t* mpls, std::uint32_t i) { return label_t::label::get(mpls[i]); }
bool bottom(const label_t* mpls, std::uint32_t i) { return label_t::eos::get(mpls[i]) != 0; }

// A label word rotated into the multilabel sum: (x << 12) OR ((x >> k) AND 0xFFF).
std::uint32_t multilabel_term(std::uint32_t x, unsigned k) {
  return (x << MULTILABEL_SHIFT) | ((x >> k) & MULTILABEL_LOW_MASK);
}

std::uint32_t byte_reversed(std::uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xFF00) | ((v << 8) & 0xFF0000) | (v << 24);
}

// Where the entropy label indicator stands, by the parser's place when it
// counted the stack, else by a scan that records what it finds.
std::uint32_t find_eli(env_t env, const label_t* mpls, std::uint32_t parsed_labels) {
  if (parsed_labels != 0) {
    std::uint32_t place = 0;
    pkt_get_rx_entropy_label(env, &place);
    return place >= ELI_FIRST_PLACE && place <= ELI_LAST_PLACE ? place : NO_ELI;
  }
  for (std::uint32_t i = 0; i < ELI_SCAN_LABELS; ++i) {
    if (label_of(mpls, i) == MPLS_LABEL_ELI) {
      pkt_set_rx_entropy_label(env, i);
      return i;
    }
    if (bottom(mpls, i)) break;
  }
  return NO_ELI;
}

std::uint32_t count_labels(const label_t* mpls) {
  std::uint32_t n = COUNT_FROM;
  while (n < COUNT_TO && !bottom(mpls, n - 1)) ++n;
  return n;
}

}  // namespace

boolean_t pkt_entropy_label_sanity_chk(env_t, const mpls_hdr_st* mpls, std::uint32_t eli) {
  const bool sane = label_of(mpls, 0) != MPLS_LABEL_ELI && !bottom(mpls, eli) && label_t::ttl::get(mpls[eli + 1]) == 0;
  return sane ? TRUE : FALSE;
}

std::uint32_t hash_lb_mpls_base(std::uint32_t label, std::uint32_t if_handle, std::uint32_t router_id) {
  return if_handle - router_id + label * LABEL_MULTIPLIER;
}

std::uint32_t hash_lb_mpls_multilabel_base(std::uint32_t label1, std::uint32_t label2, std::uint32_t label3,
                                           std::uint32_t ifhandle, std::uint32_t router_id) {
  return multilabel_term(label3, 1) + multilabel_term(label2, 2) + multilabel_term(label1, 3) +
         byte_reversed(ifhandle) - router_id;
}

std::uint32_t hash_lb_mpls_racetrack(env_t env, mpls_hdr_st* mpls, std::uint32_t if_handle, std::uint32_t router_id) {
  const std::uint32_t parsed = pkt_get_rx_mpls_num_labels(env);
  const std::uint32_t eli = global_config_is_entropy_lb_enabled(env) ? find_eli(env, mpls, parsed) : NO_ELI;
  const std::uint32_t n = parsed != 0 ? parsed : count_labels(mpls);
  if (eli != NO_ELI) {
    if (pkt_entropy_label_sanity_chk(env, mpls, eli)) {
      return hash_lb_mpls_base(label_of(mpls, eli + 1), if_handle, router_id);
    }
    common_flags2_st::entropy_label_invalid_or_is_sfi::set(*ps_put_mod_common_flags2(env), 1);
    return 0;
  }
  if (n <= PAYLOAD_MAX_LABELS) {
    std::uint8_t* payload = reinterpret_cast<std::uint8_t*>(mpls + n);
    switch (payload[0] >> 4) {
      case 4:
        return hash_lb_ipv4(env, reinterpret_cast<ipv4_hdr_st*>(payload), if_handle, router_id);
      case 6:
        return hash_lb_ipv6(env, reinterpret_cast<ipv6_hdr_st*>(payload), if_handle, router_id);
      default:
        break;
    }
  }
  if (n <= PARSER_MAX_LABELS) return hash_lb_mpls_base(label_of(mpls, n - 1), if_handle, router_id);
  return hash_lb_mpls_multilabel_base(label_of(mpls, n - 3), label_of(mpls, n - 2), label_of(mpls, n - 1), if_handle,
                                      router_id);
}

std::uint32_t hash_lb_mpls_inline(env_t env, mpls_hdr_st* mpls, std::uint32_t if_handle, std::uint32_t router_id) {
  return hash_lb_mpls_racetrack(env, mpls, if_handle, router_id);
}
