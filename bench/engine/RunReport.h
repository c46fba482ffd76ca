#ifndef BENCH_ENGINE_RUNREPORT_H
#define BENCH_ENGINE_RUNREPORT_H

#include <chrono>

// Time of the work alone: what the program needs to get at its input doesn't count.
class Stopwatch
{
public:
  using Clock = std::chrono::steady_clock;

  void Start() { started = Clock::now(); }
  void Stop() { total += Clock::now() - started; }
  double Seconds() const { return std::chrono::duration<double>(total).count(); }

private:
  Clock::time_point started;
  Clock::duration total{0};
};

// Prints the figures of a run, a name and a number in each line, and waits for the end of the
// input: whoever measures looks at the memory of the process meanwhile.
void ReportRun(double seconds, int traces);

#endif
