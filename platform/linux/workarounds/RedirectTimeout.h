#pragma once

// The cure itself is abortOnceSilentFor() in fetch/FeedFetch.cpp: kivfetch uses nothing of ours. Nobody includes this.
//
// Symptom: a request with QNetworkRequest::setTransferTimeout is not given up any more once it has been redirected: a
//   server that is silent from there on holds it for ever.
// Of: Qt Network, 6.4 to 6.8 at least; gone in 6.11. No report found.
// Left out: kivfetch stays until its limit of ten minutes, where it should give up after one.
// Still needed? WorkaroundNeed.RedirectTimeout tells.
