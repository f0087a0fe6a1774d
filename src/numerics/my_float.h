// The extended real of the solver: x87 80-bit on x86-64.
#pragma once

using my_float = long double;
