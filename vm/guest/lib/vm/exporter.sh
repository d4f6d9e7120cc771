#!/bin/sh
# Prometheus' node exporter, which offers the metrics in the collector's folder. For other scripts
# to source, after wait.sh.

collector=/var/lib/prometheus/node-exporter

# What a Prometheus server gets.
scrape() { wget -qO- http://127.0.0.1:9100/metrics 2>/dev/null; }

# The exporter has started to answer.
answers() { scrape >/tmp/scraped; }

start_exporter() {
    mkdir -p $collector
    ifconfig lo up
    prometheus-node-exporter --web.listen-address=127.0.0.1:9100 --collector.disable-defaults \
        --collector.textfile --collector.textfile.directory=$collector >/tmp/exporter.log 2>&1 &
    exporter=$!
    wait_for 60 answers || cat /tmp/exporter.log
}

stop_exporter() { kill "$exporter"; }
