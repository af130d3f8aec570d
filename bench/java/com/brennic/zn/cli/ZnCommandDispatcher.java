package com.brennic.zn.cli;

/** An empty command: what a run of it costs is the cost of starting a command. */
public final class ZnCommandDispatcher {
  private ZnCommandDispatcher() {}

  public static void main(String[] args) {}
}
