#include "classify_requests.h"

#include <algorithm>
#include <optional>

#include "igpu_engine.h"
#include "tcam_engine.h"

namespace model {

namespace {

bool is_key_size(std::uint32_t s) {
  return s == ITC_KEY_80 || s == ITC_KEY_160 || s == ITC_KEY_320 || s == ITC_KEY_400 || s == ITC_KEY_640;
}

// The search of one profile, or what is wrong with it.
std::optional<tcam_engine::search_result> search(dma_request& r, std::uint32_t profile, bool bmr,
                                                 std::span<const std::uint8_t> key) {
  const auto found = r.owner().tcam().search(r.thread().index, profile, bmr, key);
  if (found.what != tcam_engine::outcome::wrong_width) return found;
  r.breach("TCAM search of " + std::to_string(key.size() * 8) + " bits on profile " + std::to_string(profile) +
           ", whose entries are of another width");
  return std::nullopt;
}

void single_answer(const tcam_engine::search_result& s, std::uint8_t* resp) {
  tcam_search_response_st out{};
  tcam_search_response_st::srch_hit::set(out, s.what == tcam_engine::outcome::hit);
  tcam_search_response_st::hit_addr::set(out, s.index);
  std::copy_n(out.bytes, sizeof out.bytes, resp);
}

// The second profile's answer comes first; the first profile's address is
// split over the two words.
void multi_answer(const tcam_engine::search_result& first, const tcam_engine::search_result& second,
                  std::uint8_t* resp) {
  using m = tcam_multi_search_response_st;
  m out{};
  m::srch_hit_1::set(out, second.what == tcam_engine::outcome::hit);
  m::hit_addr_1::set(out, second.index);
  m::srch_hit_0::set(out, first.what == tcam_engine::outcome::hit);
  m::hit_addr_0h::set(out, first.index >> TCAM_HIT_ADDR_0L_BITS);
  m::hit_addr_0l::set(out, first.index);
  std::copy_n(out.bytes, sizeof out.bytes, resp);
}

}  // namespace

// The range stage's header, on resource 59, is taken and not applied: the
// model keeps no range configurations (docs/decisions.md).
void execute_tcam(dma_request& r) {
  const std::uint32_t cmd_loc = r.cmd().resource == RES_ITC_ACL_QOS ? TCAM_ARL_CMD_LOC : TCAM_DIRECT_CMD_LOC;
  if (r.cmd().req_bytes < cmd_loc + 4) return r.breach("TCAM request without its command word");
  sse_itc_desc_fmt w0;
  std::copy_n(r.bytes_from(cmd_loc), sizeof w0.bytes, w0.bytes);
  const std::uint32_t size = sse_itc_desc_fmt::key_size::get(w0);
  if (sse_itc_desc_fmt::cmd::get(w0) != ITC_CMD_SEARCH || !is_key_size(size)) {
    return r.breach("ITC command word " + std::to_string(r.word(cmd_loc / 4)) + ", which nothing serves");
  }
  if (r.cmd().req_bytes < cmd_loc + itc_request_bytes(size)) {
    return r.breach("TCAM request of " + std::to_string(r.cmd().req_bytes) + " bytes, short of its " +
                    std::to_string(itc_key_bytes(size) * 8) + "-bit key");
  }
  const bool multi = sse_itc_desc_fmt::ms::get(w0);
  if (r.cmd().resp_bytes < (multi ? sizeof(tcam_multi_search_response_st) : sizeof(tcam_search_response_st))) {
    return r.breach("TCAM search without room for its answer");
  }
  const std::span<const std::uint8_t> key{r.bytes_from(cmd_loc + itc_key_offset(size)), itc_key_bytes(size)};
  const auto first = search(r, sse_itc_desc_fmt::profile_0::get(w0), sse_itc_desc_fmt::bmr_en_0::get(w0), key);
  if (!first) return;
  if (!multi) return single_answer(*first, r.response());
  const auto second = search(r, sse_itc_desc_fmt::profile_1::get(w0), sse_itc_desc_fmt::bmr_en_1::get(w0), key);
  if (second) multi_answer(*first, *second, r.response());
}

void execute_igpu(dma_request& r) {
  if (r.cmd().req_bytes < sizeof(igpu_resp_match_request_) || r.cmd().resp_bytes < sizeof(igpu_resp_match_response_)) {
    return r.breach("IGPU request or response shorter than its record");
  }
  igpu_engine::key k;
  std::copy_n(r.bytes_from(0), k.size(), k.begin());
  const auto found = r.owner().igpu().search(r.thread().index, k);
  igpu_resp_match_response_ out{};
  if (found) {
    igpu_resp_match_response_::result::set(out, 1);
    igpu_resp_match_response_::uidb_index::set(out, found->uidb_index);
    igpu_resp_match_response_::mark_bits::set(out, found->mark_bits);
  }
  std::copy_n(out.bytes, sizeof out.bytes, r.response());
}

}  // namespace model
