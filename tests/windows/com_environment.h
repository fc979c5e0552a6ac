#pragma once

#include <gtest/gtest.h>

#include "ado/com.h"

namespace azcoll::test {

/// Automation for the whole test program, in one single-threaded apartment as callers have it.
class ComEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override { ASSERT_TRUE(SUCCEEDED(CoInitialize(nullptr))); }
  void TearDown() override { CoUninitialize(); }
};

}  // namespace azcoll::test
