// One DMA command of a thread, as the engines see it: the decoded command
// word, the request words in data memory and the response area.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "dma_defs.h"
#include "memory_word.h"
#include "npu.h"

namespace model {

struct dma_cmd {
  std::uint32_t resource;
  std::uint32_t resp_bytes;
  std::uint32_t resp_loc;
  std::uint32_t req_bytes;
  std::uint32_t req_loc;
};

inline dma_cmd decode_dma_cmd(std::uint32_t cmd) {
  dma_cmd_st c;
  dma_cmd_st::word::set(c, cmd);
  return {dma_cmd_st::resource::get(c), dma_cmd_st::resp_units::get(c) * DMA_RESP_UNIT_BYTES,
          dma_cmd_st::resp_cell::get(c) * DMA_CELL_BYTES, dma_cmd_st::req_words::get(c) * DMA_REQ_WORD_BYTES,
          dma_cmd_st::req_cell::get(c) * DMA_CELL_BYTES};
}

class dma_request {
 public:
  dma_request(npu_thread& t, const dma_cmd& c) : t_(t), c_(c) {}

  std::uint32_t word(std::uint32_t i) const { return reinterpret_cast<const be_u32*>(bytes_from(4 * i))->get(); }
  // The request from byte `offset` on, as record R.
  template <class R>
  const R& record_at(std::uint32_t offset) const {
    return *reinterpret_cast<const R*>(bytes_from(offset));
  }
  const std::uint8_t* bytes_from(std::uint32_t offset) const { return t_.dmem.data() + c_.req_loc + offset; }
  // The response area, cleared to the response size; null if none is wanted.
  std::uint8_t* response() {
    if (c_.resp_bytes == 0) return nullptr;
    std::memset(t_.dmem.data() + c_.resp_loc, 0, c_.resp_bytes);
    return t_.dmem.data() + c_.resp_loc;
  }
  const dma_cmd& cmd() const { return c_; }
  npu_thread& thread() { return t_; }
  npu& owner() { return *t_.owner; }
  void breach(const std::string& what) { t_.owner->breach(t_, what); }

 private:
  npu_thread& t_;
  dma_cmd c_;
};

}  // namespace model
