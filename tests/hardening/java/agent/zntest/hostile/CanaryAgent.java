package zntest.hostile;

/** A Java agent given through -javaagent: runs before any class of the command. */
public final class CanaryAgent {
  private CanaryAgent() {}

  public static void premain(String args) {
    Canary.leave("agent");
  }
}
