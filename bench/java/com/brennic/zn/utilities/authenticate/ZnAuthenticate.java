package com.brennic.zn.utilities.authenticate;

/** Takes the keys and does nothing with them. */
public final class ZnAuthenticate {
  private ZnAuthenticate() {}

  public static void setKeys() {}
}
