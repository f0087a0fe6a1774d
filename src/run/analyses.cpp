#include "run/analyses.h"

#include "among/min_span_net_report.h"
#include "within/distances.h"
#include "within/diversity.h"

void install_analyses() {
  install_distance_analysis();
  install_diversity_analyses();
  install_among_hooks();
}
