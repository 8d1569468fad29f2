// SPDX-License-Identifier: ISC
// Its precompiled header serves every test program.
