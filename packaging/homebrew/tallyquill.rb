# SPDX-License-Identifier: MIT
#
# The program for terminals, and the application beside it. Nobody has tried this formula yet. Whoever publishes
# an archive of make dist puts its address and its SHA-256 here.
class Tallyquill < Formula
  desc "Calculator that works like a text console"
  homepage "https://tallyquill.invalid/"
  url "https://tallyquill.invalid/tallyquill-1.0.0.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"
  license "MIT"

  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on :macos
  depends_on "pugixml"
  depends_on "readline"

  def install
    # Homebrew keeps this library apart from the older one of the system.
    args = %W[-DTALLYQUILL_TESTS=OFF -DCMAKE_PREFIX_PATH=#{Formula["readline"].opt_prefix}]
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", *args, *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    assert_equal "ans = 14", shell_output("#{bin}/tallyquill --no-files 2+3*4").strip
  end
end
