// One DMA command of a thread, as the engines see it: the decoded command
// word, the request words in data memory and the response area.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "dma_defs.h"
#include "npu.h"

namespace model {

struct dma_cmd {
  std::uint32_t resource;
  std::uint32_t resp_bytes;
  std::uint32_t resp_loc;
  std::uint32_t req_bytes;
  std::uint32_t req_loc;
};

constexpr dma_cmd decode_dma_cmd(std::uint32_t cmd) {
  return {cmd >> DMA_CMD_RESOURCE_SHIFT, ((cmd >> DMA_CMD_RESP_SIZE_SHIFT) & 0x1F) * 8,
          ((cmd >> DMA_CMD_RESP_LOC_SHIFT) & 0x3F) * 16, ((cmd >> DMA_CMD_REQ_SIZE_SHIFT) & 0x1F) * 4,
          (cmd & 0x3F) * 16};
}

inline std::uint32_t load_be32(const std::uint8_t* p) {
  return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

inline void store_be(std::uint8_t* p, unsigned width, std::uint64_t v) {
  for (unsigned i = width; i-- > 0;) {
    p[i] = static_cast<std::uint8_t>(v);
    v >>= 8;
  }
}

class dma_request {
 public:
  dma_request(npu_thread& t, const dma_cmd& c) : t_(t), c_(c) {}

  std::uint32_t word(std::uint32_t i) const { return load_be32(t_.dmem.data() + c_.req_loc + 4 * i); }
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
