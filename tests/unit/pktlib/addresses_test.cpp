#include "pktlib/addresses.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace pkt {
namespace {

TEST(Addresses, ParseUsualForms) {
  EXPECT_EQ(mac("00:1b:2C:3d:4E:ff"), (mac_addr{0x00, 0x1b, 0x2c, 0x3d, 0x4e, 0xff}));
  EXPECT_EQ(mac("00-1b-2c-3d-4e-ff"), (mac_addr{0x00, 0x1b, 0x2c, 0x3d, 0x4e, 0xff}));
  EXPECT_EQ(ip4("192.0.2.255"), (ip4_addr{192, 0, 2, 255}));
  EXPECT_EQ(ip6("2001:db8::1"), (ip6_addr{0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
  EXPECT_EQ(ip6("::ffff:192.0.2.1")[12], 192);
}

TEST(Addresses, RejectMalformedTextNamingIt) {
  const char* bad_macs[] = {
      "", "00:11:22:33:44", "00:11:22:33:44:55:66", "00:11:22:33:44:5g", "0011.2233.4455", "00:11:22:33:44:5"};
  for (const char* text : bad_macs) {
    EXPECT_THROW(mac(text), std::invalid_argument) << text;
  }
  const char* bad_ip4s[] = {"", "10.0.0", "10.0.0.256", "10.0.0.1.2", "2001:db8::1", "10.0.0.1 "};
  for (const char* text : bad_ip4s) {
    EXPECT_THROW(ip4(text), std::invalid_argument) << text;
  }
  const char* bad_ip6s[] = {"", "2001:db8:::1", "2001:db8::1::2", "10.0.0.1", "12345::1"};
  for (const char* text : bad_ip6s) {
    EXPECT_THROW(ip6(text), std::invalid_argument) << text;
  }
  try {
    ip4("10.0.0.300");
    FAIL();
  } catch (const std::invalid_argument& e) {
    EXPECT_NE(std::string(e.what()).find("'10.0.0.300'"), std::string::npos) << e.what();
  }
}

}  // namespace
}  // namespace pkt
