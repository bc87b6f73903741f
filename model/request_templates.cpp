// The NPU's side of the request templates (request_templates.def): what each
// one does with the command word and the request cell.
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string>

#include "platform_ops.h"
#include "plu_defs.h"
#include "plu_requests.h"
#include "request_templates.h"
#include "stats_defs.h"
#include "stats_engine.h"
#include "tlu_engine.h"

namespace model {

namespace {

constexpr std::uint32_t DMA_REACH = 1024;
constexpr std::uint32_t CELL_BYTES = 16;
constexpr std::uint32_t RESPONSE_UNIT = 8;
constexpr std::uint32_t BUCKET_BYTES = 16;

std::string hex(std::uint32_t v) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%X", v);
  return buf;
}

class template_request {
 public:
  template_request(npu_thread& t, std::uint32_t table, std::uint32_t entry, std::uint32_t cmd, std::uint32_t req_cell,
                   std::uint32_t res_cell)
      : t_(t), table_(table), entry_(entry), cmd_(cmd), req_(req_cell * CELL_BYTES), res_(res_cell * CELL_BYTES) {}

  std::uint32_t cmd() const { return cmd_; }
  // Word i of the request; word 0 is the command itself.
  // The request as record R; word 0 stands for the command.
  template <class R>
  const R& record() const {
    return *reinterpret_cast<const R*>(t_.dmem.data() + req_);
  }
  // Request bytes from `offset` on; a request may run on past its cell.
  void copy_request(std::uint32_t offset, std::span<std::uint8_t> out) const {
    std::memcpy(out.data(), t_.dmem.data() + req_ + offset, out.size());
  }
  // The response area of `bytes` bytes in whole units, cleared; null after a
  // breach if it does not fit where DMA reaches.
  std::uint8_t* response(std::uint32_t bytes) {
    const std::uint32_t whole = (bytes + RESPONSE_UNIT - 1) / RESPONSE_UNIT * RESPONSE_UNIT;
    if (res_ + whole > DMA_REACH) {
      breach("response of " + std::to_string(whole) + " bytes at " + hex(res_) + " passes the first 1024 bytes");
      return nullptr;
    }
    std::memset(t_.dmem.data() + res_, 0, whole);
    return t_.dmem.data() + res_;
  }
  npu_thread& thread() { return t_; }
  npu& owner() { return *t_.owner; }
  void breach(const std::string& what) {
    owner().breach(t_, "request template " + std::to_string(table_) + "/" + std::to_string(entry_) + ": " + what);
  }

 private:
  npu_thread& t_;
  std::uint32_t table_;
  std::uint32_t entry_;
  std::uint32_t cmd_;
  std::uint32_t req_;
  std::uint32_t res_;
};

void no_descriptor(template_request& r, std::uint32_t word) {
  r.breach("paged read through table page descriptor " + std::to_string(page_descriptors::descriptor_of(word)) +
           ", which is not set");
}

// Reads with allocation go through the TLU cache.
enum class allocation { cached, uncached };

void tlu_read(template_request& r, std::uint32_t bytes, allocation a) {
  const auto vaddr = r.owner().pages().address_of(r.cmd());
  if (!vaddr) return no_descriptor(r, r.cmd());
  if (std::uint8_t* resp = r.response(bytes)) {
    tlu_read_virtual(r.owner(), *vaddr, {resp, bytes}, a == allocation::cached);
  }
}

struct modulus {
  std::uint32_t rem;
  std::uint32_t quot;
};
std::optional<modulus> modulus_of(template_request& r) {
  const auto& req = r.record<tlu_mod_request_st>();
  const std::uint32_t denom = tlu_mod_request_st::denom::get(req);
  const std::uint32_t num = tlu_mod_request_st::num::get(req);
  if (denom == 0) {
    r.breach("read with modulus by a denominator of 0");
    return std::nullopt;
  }
  return modulus{num % denom, num / denom};
}

void mod_read(template_request& r, std::uint32_t record_bytes) {
  const auto m = modulus_of(r);
  if (!m) return;
  const auto vaddr = r.owner().pages().paged_address(r.cmd(), m->rem);
  if (!vaddr) return no_descriptor(r, r.cmd());
  std::uint8_t* resp = r.response(sizeof(npu_mod_fields_st) + record_bytes);
  if (!resp) return;
  auto& answer = *reinterpret_cast<npu_mod_fields_st*>(resp);
  npu_mod_fields_st::mod_rem::set(answer, m->rem);
  npu_mod_fields_st::mod_quot::set(answer, m->quot);
  tlu_read_virtual(r.owner(), *vaddr, {resp + sizeof(npu_mod_fields_st), record_bytes}, true);  // with allocation
}

void bucket_read(template_request& r) {
  const auto m = modulus_of(r);
  if (!m) return;
  if (std::uint8_t* resp = r.response(BUCKET_BYTES)) {
    tlu_read_virtual(r.owner(), r.cmd() + m->rem * BUCKET_BYTES, {resp, BUCKET_BYTES}, false);
  }
}

// A PLU search of the key whose first four bytes are the command word and
// whose rest stands in the request cell behind it.
void plu_search(template_request& r, std::uint8_t code, std::uint32_t key_bytes) {
  if (r.cmd() >> 24 != code) return r.breach("PLU search of key code " + std::to_string(r.cmd() >> 24));
  std::array<std::uint8_t, 20> key{};
  reinterpret_cast<be_u32*>(key.data())->set(r.cmd());
  r.copy_request(4, {key.data() + 4, key_bytes - 4});
  std::uint8_t* resp = r.response(PLU_SEARCH_RESP_BYTES);
  if (!resp) return;
  const std::string broke = serve_plu_key(r.thread(), {key.data(), key_bytes}, {resp, PLU_SEARCH_RESP_BYTES});
  if (!broke.empty()) r.breach(broke);
}

void counter_increment(template_request& r) { r.owner().memory().rmw(r.cmd(), 4, rmw_op::add, 1); }

}  // namespace

void execute_template(npu_thread& t, std::uint32_t table, std::uint32_t entry, std::uint32_t cmd,
                      std::uint32_t req_cell, std::uint32_t res_cell) {
  template_request r(t, table, entry, cmd, req_cell, res_cell);
  switch (rtt_index(table, entry)) {
    case RTT_HASH_BUCKET:
      return bucket_read(r);
    case RTT_TLU_READ_8B:
      return tlu_read(r, 8, allocation::cached);
    case RTT_TLU_READ_16B:
      return tlu_read(r, 16, allocation::cached);
    case RTT_TLU_READ_32B:
      return tlu_read(r, 32, allocation::cached);
    case RTT_TLU_READ_4B:
      return tlu_read(r, 4, allocation::cached);
    case RTT_TLU_READ_16B_NO_ALLOC:
      return tlu_read(r, 16, allocation::uncached);
    case RTT_TLU_READ_32B_NO_ALLOC:
      return tlu_read(r, 32, allocation::uncached);
    case RTT_STATS_PAIR:
      return stats_add(t, cmd, r.record<stats_add_request_st>().count);
    case RTT_COUNTER_INCREMENT:
      return counter_increment(r);
    case RTT_GLOBAL_COUNTER:
      return stats_count_global(t, cmd);
    case RTT_MOD_READ_16B:
      return mod_read(r, 16);
    case RTT_MOD_READ_32B:
      return mod_read(r, 32);
    case RTT_PLU_IPV4_SEARCH:
      return plu_search(r, PLU_IPV4_UNICAST, sizeof(plu_ipv4_unicast_key_st));
    case RTT_PLU_IPV6_SEARCH:
      return plu_search(r, PLU_IPV6_UNICAST, sizeof(plu_ipv6_unicast_key_st));
    default:
      break;
  }
  r.breach("nothing serves it");
}

}  // namespace model
