// The fabric header (dc3_nph_st) in front of a packet that crosses the fabric.
#pragma once

#include "be_types.h"

struct dc3_nph_st {
  std::uint8_t bytes[32];
  using critical_inject = be_bits<9, 0, 1>;
  using ptrace = be_bits<8, 1, 1>;
  using nph_type = be_bits<8, 2, 6>;
};

// A buffer from the host or the timer (PDMA), 4 bytes at pkt_start.
struct fhpdma_bufhdr_type {
  std::uint8_t bytes[4];
  using issu_vbit = be_bits<0, 0, 1>;
  using diagpkt = be_bits<0, 1, 1>;
  using traffic_type = be_bits<0, 2, 2>;
  using pkt_type = be_bits<0, 6, 2>;
  using queue_number = be_bits<1, 4, 4>;
  using pktlen = be_bits<2, 2, 14>;
};
