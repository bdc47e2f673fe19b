#include "mesher/hash.h"

#include "framework/text.h"

namespace kntr::mesher {

namespace {

// Field width of one key's digits.
constexpr int KeyField = 8;

// Appends the decimal digits of `value` as they stand in a field of 8 with
// the leading blanks stripped: a value too wide for the field is all stars.
// Returns the number of characters written.
int appendKey(int value, char* out) {
  if (value > 99999999) {
    for (int k = 0; k < KeyField; ++k) out[k] = '*';
    return KeyField;
  }
  char digits[KeyField];
  int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value > 0);
  for (int k = 0; k < n; ++k) out[k] = digits[n - 1 - k];
  return n;
}

int reduce(std::string_view text, int size) {
  return static_cast<int>(hashText(text) % static_cast<std::uint32_t>(size)) + 1;
}

}  // namespace

std::uint32_t hashText(std::string_view text) {
  std::uint32_t h = 0;
  for (const char c : text) {
    h = h * 16u + static_cast<unsigned char>(c);
    const std::uint32_t g = h & 0xF0000000u;
    if (g != 0) h = (h ^ ((g >> 24) & 255u)) ^ g;
  }
  return h;
}

int IHASH2(int a, int b, int size, bool& status) {
  status = false;
  if (a < 1 || b < 1) {
    framework::fail("(IHASH2) Numbers to be hashed must be positive!", status);
    return 0;
  }
  char text[2 * KeyField];
  int length = appendKey(a < b ? a : b, text);
  const int second = appendKey(a < b ? b : a, text + length);
  if (length == 0 || second == 0) {
    framework::fail("(IHASH2) Internal error when building hash string!", status);
    return 0;
  }
  length += second;
  return reduce(std::string_view(text, static_cast<std::size_t>(length)), size);
}

int IHASHN(int n, View1<const int> keys, int size, bool& status) {
  status = false;
  if (n > MaxHashKeys) {
    framework::fail("(IHASHN) Max allowed number of key values exceeded!maximum!", status);
    return 0;
  }
  for (int i = 1; i <= n; ++i) {
    if (keys(i) < 1) {
      framework::fail("(IHASHN) Numbers to be hashed must be positive!", status);
      return 0;
    }
  }

  // Heap sort of the key positions by value, ascending.
  Array1<int, MaxHashKeys> order;
  for (int i = 1; i <= n; ++i) order(i) = i;
  auto sift = [&](int root, int end) {
    const int item = order(root);
    for (;;) {
      int child = 2 * root;
      if (child > end) break;
      if (child < end && keys(order(child + 1)) > keys(order(child))) ++child;
      if (keys(order(child)) <= keys(item)) break;
      order(root) = order(child);
      root = child;
    }
    order(root) = item;
  };
  for (int root = n / 2; root >= 1; --root) sift(root, n);
  for (int end = n; end > 1; --end) {
    const int top = order(1);
    order(1) = order(end);
    order(end) = top;
    sift(1, end - 1);
  }

  char text[MaxHashKeys * KeyField];
  int length = 0;
  for (int i = 1; i <= n; ++i) length += appendKey(keys(order(i)), text + length);
  if (length == 0) {
    framework::fail("(IHASHN) Internal error when building hash string!", status);
    return 0;
  }
  return reduce(std::string_view(text, static_cast<std::size_t>(length)), size);
}

}  // namespace kntr::mesher
